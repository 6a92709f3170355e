#pragma once

#include <elf.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zarn::test {

/// A program or shared library of this machine's kind, as the linker has left it (ELF, 64 bit).
class ElfFile {
public:
    struct Symbol {
        std::string name;
        bool defined = false;
        bool function = false;
        bool local = false; ///< to one source file
        std::uint64_t address = 0;
    };

    /// Throws std::runtime_error when the file cannot be read or is no such file.
    explicit ElfFile(std::string const& path);

    Elf64_Half GetType() const;

    /// The headers of the program, what the loader maps and protects.
    std::vector<Elf64_Phdr> GetSegments() const;

    /// The first of a kind (PT_...); none when there is none.
    std::optional<Elf64_Phdr> FindSegment(Elf64_Word type) const;

    /// The value of an entry of the dynamic section (DT_...); none when there is none.
    std::optional<std::uint64_t> FindDynamic(Elf64_Sxword tag) const;

    /// What the file takes from others or offers to them.
    std::vector<Symbol> GetDynamicSymbols() const;

    /// Everything that has a name, as long as the file is not stripped.
    std::vector<Symbol> GetAllSymbols() const;

    /// The bytes at an address of the running program; fewer where the file ends.
    std::string ReadAt(std::uint64_t address, std::size_t count) const;

private:
    template <typename T>
    T Get(std::uint64_t offset) const;
    std::vector<Symbol> ReadSymbols(Elf64_Word sectionType) const;

    std::string bytes;
};

} // namespace zarn::test
