#pragma once

#include <elf.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zarn::test {

/// An ELF program or shared library (64 bit) for this machine's architecture.
class ElfFile {
public:
    struct Symbol {
        std::string name;
        bool defined = false;
        bool function = false;
        bool local = false; ///< local to one source file
        std::uint64_t address = 0;
    };

    /// Throws std::runtime_error when the file cannot be read or is not such a file.
    explicit ElfFile(std::string const& path);

    Elf64_Half GetType() const;

    /// The program headers, which describe what the loader maps and protects.
    std::vector<Elf64_Phdr> GetSegments() const;

    /// The first segment of a kind (PT_...); nullopt when there is none.
    std::optional<Elf64_Phdr> FindSegment(Elf64_Word type) const;

    /// The value of an entry in the dynamic section (DT_...); nullopt when there is none.
    std::optional<std::uint64_t> FindDynamic(Elf64_Sxword tag) const;

    /// Imported and exported symbols.
    std::vector<Symbol> GetDynamicSymbols() const;

    /// All symbols, unless the file is stripped.
    std::vector<Symbol> GetAllSymbols() const;

    /// The bytes at a virtual address; fewer at the end of the file.
    std::string ReadAt(std::uint64_t address, std::size_t count) const;

private:
    template <typename T>
    T Get(std::uint64_t offset) const;
    std::vector<Symbol> ReadSymbols(Elf64_Word sectionType) const;

    std::string bytes;
};

} // namespace zarn::test
