// A library that is loaded at run time and stays loaded.
#pragma once

#include "../system.h"

#include <filesystem>
#include <stdexcept>
#include <string>

class Library {
public:
    explicit Library(const std::filesystem::path& path) : file(path.string()), library(load_library(file.c_str())) {
        if (library == nullptr) throw std::runtime_error("can't load " + file + ": " + load_error());
    }

    /// @tparam Function  the type of a pointer to the function
    template <class Function>
    Function find(const std::string& name) const {
        Function function{};
        if (!find_function(library, name.c_str(), &function)) throw std::runtime_error(file + " has no " + name);
        return function;
    }

private:
    std::string file;
    void* library;
};
