// A library that is loaded at run time and stays loaded.
#pragma once

#include "../system.h"

#include <filesystem>
#include <stdexcept>
#include <string>

class Library {
public:
    /// @param description  what messages call the library, such as "the module"
    Library(const std::filesystem::path& path, const std::string& description)
        : name(description), library(load_library(path.c_str())) {
        if (library == nullptr) throw std::runtime_error("can't load " + name + ": " + load_error());
    }

    /// @tparam Function  the type of a pointer to the function
    template <class Function>
    Function find(const std::string& function) const {
        Function found{};
        if (!find_function(library, function.c_str(), &found)) throw std::runtime_error(name + " has no " + function);
        return found;
    }

private:
    std::string name;
    void* library;
};
