// Bytes of a small Windows library, made to measure.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

struct PeShape {
    std::uint16_t machine = 0x14C;
    std::vector<std::string> names{};       // exports by name, from ordinal 1
    std::vector<std::uint32_t> ordinals{};  // and by ordinal alone, higher than those and ascending
    std::vector<std::string> imports = {"KERNEL32.dll"};
    std::string resource = "A";  // name of the one resource beside the version
    std::array<std::uint32_t, 4> version = {1, 2, 3, 4};
    bool isLibrary = true;
};

// One section, whose addresses are those in the file.
inline std::string peBytes(const PeShape& shape) {
    std::string bytes(0x4000, '\0');
    std::size_t free = 0x400;
    const auto put = [&](std::size_t at, std::uint32_t value, unsigned size = 4) {
        for (unsigned i = 0; i < size; ++i) bytes[at + i] = static_cast<char>(value >> 8 * i);
    };
    const auto room = [&](std::size_t size) {
        const std::size_t at = free;
        free += (size + 7) / 4 * 4;
        return static_cast<std::uint32_t>(at);
    };
    const auto text = [&](const std::string& value) {
        const auto at = room(value.size() + 1);
        bytes.replace(at, value.size(), value);
        return at;
    };
    bytes.replace(0, 2, "MZ");
    put(0x3C, 0x40);
    bytes.replace(0x40, 2, "PE");
    put(0x44, shape.machine, 2);
    put(0x46, 1, 2);     // sections
    put(0x54, 0xF0, 2);  // size of the optional header
    put(0x56, shape.isLibrary ? 0x2102 : 0x0102, 2);
    const bool isWide = shape.machine == 0x8664;
    put(0x58, isWide ? 0x20B : 0x10B, 2);
    const std::size_t directories = 0x58 + (isWide ? 112 : 96);
    put(directories - 4, 16);
    put(0x148 + 8, 0x3C00);  // the section
    put(0x148 + 12, 0x400);
    put(0x148 + 16, 0x3C00);
    put(0x148 + 20, 0x400);

    const std::uint32_t last =
        shape.ordinals.empty() ? static_cast<std::uint32_t>(shape.names.size()) : shape.ordinals.back();
    const auto exports = room(40), functions = room(last * 4 + 4), names = room(400), indices = room(200);
    put(directories, exports);
    put(exports + 16, 1);  // first ordinal
    put(exports + 20, last);
    put(exports + 24, static_cast<std::uint32_t>(shape.names.size()));
    put(exports + 28, functions);
    put(exports + 32, names);
    put(exports + 36, indices);
    for (std::uint32_t i = 0; i < shape.names.size(); ++i) {
        put(functions + i * 4, 0x1000);
        put(names + i * 4, text(shape.names[i]));
        put(indices + i * 2, i, 2);
    }
    for (const auto ordinal : shape.ordinals) put(functions + (ordinal - 1) * 4, 0x1000);

    const auto imports = room(20 * (shape.imports.size() + 1));
    put(directories + 8, imports);
    for (std::uint32_t i = 0; i < shape.imports.size(); ++i) put(imports + i * 20 + 12, text(shape.imports[i]));

    // Resources: directories of a type by name and one by number, each with one entry.
    const auto root = room(0x100);
    put(directories + 16, root);
    const auto entry = [&](std::uint32_t at, std::uint32_t name, std::uint32_t below) {
        put(root + at, name);
        put(root + at + 4, below);
    };
    constexpr std::uint32_t kFlag = 0x80000000;
    const auto resource = room(shape.resource.size() * 2 + 2);
    put(resource, static_cast<std::uint32_t>(shape.resource.size()), 2);
    for (std::size_t i = 0; i < shape.resource.size(); ++i) bytes[resource + 2 + i * 2] = shape.resource[i];
    put(root + 12, 1, 2);
    put(root + 14, 1, 2);
    entry(16, (resource - root) | kFlag, 0x20 | kFlag);
    entry(24, 16, 0x40 | kFlag);
    put(root + 0x20 + 12, 1, 2);
    entry(0x30, (resource - root) | kFlag, 0xA0);
    put(root + 0x40 + 14, 1, 2);
    entry(0x50, 1, 0x60 | kFlag);
    put(root + 0x60 + 14, 1, 2);
    entry(0x70, 0x407, 0x80);
    const auto version = room(92);
    put(root + 0x80, version);
    put(version + 40, 0xFEEF04BD);
    put(version + 48, shape.version[0] << 16 | shape.version[1]);
    put(version + 52, shape.version[2] << 16 | shape.version[3]);
    return bytes;
}
