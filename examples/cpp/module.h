// The spectrophotometer module, loaded at run time, and an object of it that ends with the variable.
#pragma once

#include <filesystem>
#include <memory>
#include <SPM.h>
#include <stdexcept>
#include <string>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

class Module {
public:
    explicit Module(const std::filesystem::path& file) : library(load(std::filesystem::absolute(file))) {
        if (library == nullptr) {
            throw std::runtime_error("can't load " + file.string() + "; the SDK library must lie beside it");
        }
    }

    template <class Function>
    Function find(const char* name) const {
        const auto address = reinterpret_cast<Function>(addressOf(name));
        if (address == nullptr) throw std::runtime_error(std::string("the module has no ") + name);
        return address;
    }

private:
#ifdef _WIN32
    // Only the module's folder and the system's are searched for the SDK library.
    static HMODULE load(std::filesystem::path file) {
        return LoadLibraryExW(file.make_preferred().c_str(), nullptr,
                              LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    }
    void* addressOf(const char* name) const {
        return reinterpret_cast<void*>(GetProcAddress(library, name));
    }

    HMODULE library;
#else
    static void* load(const std::filesystem::path& file) {
        return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    }
    void* addressOf(const char* name) const {
        return dlsym(library, name);
    }

    void* library;
#endif
};

/// An object of the module. Closes the instrument, too, when it ends.
class Spectrophotometer {
public:
    explicit Spectrophotometer(const Module& module)
        : open(module.find<SPM_open_t>("SPM_open")), isOpened(module.find<SPM_isOpened_t>("SPM_isOpened")),
          calibrate(module.find<SPM_calibrate_t>("SPM_calibrate")), read(module.find<SPM_read_t>("SPM_read")),
          readSpectrum(module.find<SPM_readSpectrum_t>("SPM_readSpectrum")),
          numberOfReflections(module.find<SPM_getNumberOfReflections_t>("SPM_getNumberOfReflections")),
          object(module.find<SPM_create_t>("SPM_create")(),
                 {module.find<SPM_close_t>("SPM_close"), module.find<SPM_destroy_t>("SPM_destroy")}) {
        if (object == nullptr) throw std::runtime_error("out of memory");
    }

    SPM_HANDLE handle() const { return object.get(); }

    const SPM_open_t open;
    const SPM_isOpened_t isOpened;
    const SPM_calibrate_t calibrate;
    const SPM_read_t read;
    const SPM_readSpectrum_t readSpectrum;
    const SPM_getNumberOfReflections_t numberOfReflections;

private:
    struct End {
        using pointer = SPM_HANDLE;
        SPM_close_t close;
        SPM_destroy_t destroy;
        void operator()(SPM_HANDLE handle) const {
            close(handle);
            destroy(handle);
        }
    };

    std::unique_ptr<IScmSPM, End> object;
};
