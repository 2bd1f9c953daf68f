// One whole import, summed up in a number. No header is used: the same code runs in a host of either
// compiler's conventions, and both must come to the same result.

#pragma once

struct ImportDigest {
    int opened = 0;
    int elements = 0;
    unsigned long long hash = 14695981039346656037ull;  // FNV-1a

    void Add(unsigned long long value) {
        for (int i = 0; i < 8; ++i) {
            hash = (hash ^ (value & 255)) * 1099511628211ull;
            value >>= 8;
        }
    }
    void Add(int value) { Add(static_cast<unsigned long long>(static_cast<unsigned int>(value))); }
    void Add(unsigned int value) { Add(static_cast<unsigned long long>(value)); }
    void Add(double value) { Add(__builtin_bit_cast(unsigned long long, value)); }
    void Add(const char* text) {
        while (*text != 0) Add(static_cast<int>(static_cast<unsigned char>(*text++)));
        Add(0);
    }
};

template <class Interface>
void AddLine(ImportDigest& digest, Interface* vkm) {
    const int count = vkm->GetElementCount();
    digest.Add(count);
    for (int i = 0; i < count; ++i) {
        double point[3] = {};
        double valueR = 0, valueU = 0, valueM = 0;
        int byGPScale = 0, pattern = 0;
        unsigned int colour = 0;
        vkm->GetElementPoint(i, point);
        vkm->GetElementRValue(i, &valueR);
        digest.Add(vkm->GetElementSymbol(i));
        digest.Add(vkm->GetElementSymbolPlacement(i, &valueU, &valueM, &byGPScale));
        digest.Add(vkm->GetElementLineStyle(i, &colour, &pattern));
        digest.Add(vkm->GetElementType(i));
        const double values[] = {point[0], point[1], point[2], valueR, valueU, valueM};
        for (double value : values) digest.Add(value);
        digest.Add(byGPScale);
        digest.Add(colour);
        digest.Add(pattern);
    }
}

template <class Interface>
void AddText(ImportDigest& digest, Interface* vkm) {
    double point[3] = {};
    double scaledH = 0, valueU = 0;
    int valueD = 0, valueF = 0;
    vkm->GetTextPoint(point);
    vkm->GetTextAttributes(&valueD, &valueF, &scaledH, &valueU);
    digest.Add(vkm->GetText());
    const double values[] = {point[0], point[1], point[2], scaledH, valueU};
    for (double value : values) digest.Add(value);
    digest.Add(valueD);
    digest.Add(valueF);
}

// Imports with symbology, symbols and an orientation that exchanges the axes.
template <class Interface>
ImportDigest Import(Interface* vkm, const char* file) {
    ImportDigest digest;
    digest.opened = vkm->Open(file, 1, "", 64, 2.5, Interface::flgSymbols | Interface::flgSymbolsByGPScale);
    if (digest.opened == 0) return digest;
    while (const int kind = vkm->ReadNext()) {
        int layer = 0;
        ++digest.elements;
        digest.Add(kind);
        digest.Add(vkm->GetLayer(&layer));
        digest.Add(layer);
        if (kind == 1) {
            AddLine(digest, vkm);
        } else {
            AddText(digest, vkm);
        }
    }
    for (int layer = 0; layer <= 12; ++layer) {
        unsigned int colour = 0;
        int pattern = 0;
        vkm->SetLayerValue(100 + layer, layer);
        digest.Add(vkm->GetLayerValue(layer));
        digest.Add(vkm->GetLayerStyle(layer, &colour, &pattern));
        digest.Add(colour);
        digest.Add(pattern);
    }
    double point[3] = {1, 2, 3};
    vkm->TransformPoint(point);
    const double values[] = {point[0], point[1], point[2], vkm->GetScale()};
    for (double value : values) digest.Add(value);
    vkm->Close();
    return digest;
}
