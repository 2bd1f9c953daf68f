// Drawing and registration of the point symbols of CKokesSymbols.

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "framework/framework.h"
#include "messages/message_table.h"
#include "platform/lock.h"
#include "support/data_directories.h"
#include "support/host_calls.h"
#include "symbols/symbol_table.h"

namespace vemrado {

namespace {

// One unreadable shape file is reported in the life of the module, whichever importer meets it: the thread
// whose number stands here shows it. 0: none yet.
std::atomic<uintptr_t> warningThread = 0;
constexpr uintptr_t warned = ~uintptr_t{0};

// True for the first thread that asks, until its box is closed.
bool MayWarn() {
    uintptr_t first = 0;
    const uintptr_t self = platform::CurrentThread();
    return warningThread.compare_exchange_strong(first, self) || first == self;
}

void WarnOfShapeFile(const String& path) {
    String text(path);
    text.append(": ").append(msgNoSymbolFile).append("\n").append(msgSymbolsNotImported);
    if (!MayWarn()) return;
    AfxMessageBox(text.c_str(), frameworkExclamationOk, 0);
    warningThread = warned;
}

}  // namespace

int32_t CKokesSymbols::GetSymbolPattern(int32_t vkmCode) {
    CSymbol* found = vkmSymbols.Find(vkmCode);
    if (found == nullptr) return 0;
    CSymbol& symbol = *found;
    if (symbol.patternId == 0 && symbol.failed == 0) {
        symbol.patternId = RegisterSymbol(symbol);
        symbol.failed = symbol.patternId == 0 ? 1 : 0;
    }
    return symbol.patternId;
}

int32_t CKokesSymbols::RegisterSymbol(const CSymbol& symbol) {
    if (!Draw(symbol)) return 0;
    char name[64];
    std::snprintf(name, sizeof name, "S_%lld", std::llabs(symbol.vkmCode));
    return CallHost(setextpattpoint, pattern.Elements(), name);
}

const CPointPattern* CKokesSymbols::GetDrawing(int32_t vkmCode) {
    const CSymbol* found = vkmSymbols.Find(vkmCode);
    return found != nullptr && Draw(*found) ? &pattern : nullptr;
}

bool CKokesSymbols::Draw(const CSymbol& symbol) {
    CSymbolShapes* shapes = GetShapes(symbol.fileIndex);
    if (shapes == nullptr) return false;
    pattern.ClearPattern();
    DrawSymbol(*shapes, symbol.symbolNumber, pattern, 0, 0);
    pattern.Terminate();
    return true;
}

CSymbolShapes* CKokesSymbols::GetShapes(int32_t fileIndex) {
    if (fileIndex < 0 || static_cast<size_t>(fileIndex) >= files.size()) return nullptr;
    CSymbolFile& file = files[static_cast<size_t>(fileIndex)];
    if (file.failed != 0) return nullptr;
    if (file.shapes != nullptr) return file.shapes.get();
    file.failed = 1;
    try {
        const String path = GetSymbolDirectory(directory) + file.name;
        PoolPointer<CSymbolShapes> shapes = MakeInPool<CSymbolShapes>();
        if (shapes == nullptr || LoadShapeFile(*shapes, path.c_str()).count == 0) {
            WarnOfShapeFile(path);
            return nullptr;
        }
        file.shapes = std::move(shapes);
        file.failed = 0;
    } catch (const std::bad_alloc&) {
    }
    return file.shapes.get();
}

}  // namespace vemrado
