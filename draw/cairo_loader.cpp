// PNG and PDF canvases from the library vkm-draw.so beside this one, loaded when the first is asked for. So a
// library with pictures loads on machines without cairo.

#include <dlfcn.h>

#include <string>

#include "cairo_module.h"

namespace vemrado::draw {
namespace {

// Loaded once and kept: canvases have their code in it.
struct Module {
    NewPngCanvas* newPng = nullptr;
    NewPdfCanvas* newPdf = nullptr;
    std::string fault;

    Module() {
        Dl_info self{};
        std::string path = cairoModuleName;
        if (dladdr(reinterpret_cast<void*>(&WhyNoCairo), &self) != 0 && self.dli_fname != nullptr) {
            const std::string own = self.dli_fname;
            path = own.substr(0, own.rfind('/') + 1) + cairoModuleName;
        }
        void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library != nullptr) {
            newPng = reinterpret_cast<NewPngCanvas*>(dlsym(library, newPngCanvasName));
            newPdf = reinterpret_cast<NewPdfCanvas*>(dlsym(library, newPdfCanvasName));
        }
        if (newPng != nullptr && newPdf != nullptr) return;
        const char* why = dlerror();
        fault = "PNG and PDF pictures need " + std::string(cairoModuleName) + " and the cairo library (" +
                (why != nullptr ? why : path) + "); SVG needs nothing";
    }
};

const Module& Loaded() {
    static const Module module;
    return module;
}

}  // namespace

const char* WhyNoCairo() {
    return Loaded().fault.empty() ? nullptr : Loaded().fault.c_str();
}

std::unique_ptr<Canvas> MakePngCanvas(const PageSize& page, double dotsPerInch, ByteSink sink) {
    return std::unique_ptr<Canvas>(Loaded().newPng(page, dotsPerInch, std::move(sink)));
}

std::unique_ptr<Canvas> MakePdfCanvas(const PageSize& page, const std::string& title, ByteSink sink) {
    return std::unique_ptr<Canvas>(Loaded().newPdf(page, title, std::move(sink)));
}

}  // namespace vemrado::draw
