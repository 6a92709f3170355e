#include "hardening/elf_file.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zarn::test {

ElfFile::ElfFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(file), {});
    if (bytes.compare(0, SELFMAG, ELFMAG) != 0 || bytes.size() < sizeof(Elf64_Ehdr) || bytes[EI_CLASS] != ELFCLASS64)
        throw std::runtime_error(path + " is no ELF file of 64 bit");
}

template <typename T>
T ElfFile::Get(std::uint64_t offset) const {
    if (offset + sizeof(T) > bytes.size()) throw std::runtime_error("an ELF file is cut off");
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof(T));
    return value;
}

Elf64_Half ElfFile::GetType() const { return Get<Elf64_Ehdr>(0).e_type; }

std::vector<Elf64_Phdr> ElfFile::GetSegments() const {
    auto const header = Get<Elf64_Ehdr>(0);
    std::vector<Elf64_Phdr> segments;
    for (unsigned i = 0; i < header.e_phnum; ++i)
        segments.push_back(Get<Elf64_Phdr>(header.e_phoff + std::uint64_t{i} * header.e_phentsize));
    return segments;
}

std::optional<Elf64_Phdr> ElfFile::FindSegment(Elf64_Word type) const {
    for (auto const& segment : GetSegments())
        if (segment.p_type == type) return segment;
    return std::nullopt;
}

std::optional<std::uint64_t> ElfFile::FindDynamic(Elf64_Sxword tag) const {
    auto const segment = FindSegment(PT_DYNAMIC);
    if (!segment) return std::nullopt;
    for (auto offset = segment->p_offset; offset < segment->p_offset + segment->p_filesz; offset += sizeof(Elf64_Dyn)) {
        auto const entry = Get<Elf64_Dyn>(offset);
        if (entry.d_tag == tag) return entry.d_un.d_val;
    }
    return std::nullopt;
}

std::vector<ElfFile::Symbol> ElfFile::GetDynamicSymbols() const { return ReadSymbols(SHT_DYNSYM); }

std::vector<ElfFile::Symbol> ElfFile::GetAllSymbols() const { return ReadSymbols(SHT_SYMTAB); }

std::vector<ElfFile::Symbol> ElfFile::ReadSymbols(Elf64_Word sectionType) const {
    auto const header = Get<Elf64_Ehdr>(0);
    auto const section = [&](std::uint64_t index) {
        return Get<Elf64_Shdr>(header.e_shoff + index * header.e_shentsize);
    };
    std::vector<Symbol> symbols;
    for (unsigned i = 0; i < header.e_shnum; ++i) {
        auto const table = section(i);
        if (table.sh_type != sectionType) continue;
        auto const names = section(table.sh_link).sh_offset;
        for (std::uint64_t offset = 0; offset < table.sh_size; offset += sizeof(Elf64_Sym)) {
            auto const symbol = Get<Elf64_Sym>(table.sh_offset + offset);
            symbols.push_back({.name = bytes.c_str() + names + symbol.st_name,
                               .defined = symbol.st_shndx != SHN_UNDEF,
                               .function = ELF64_ST_TYPE(symbol.st_info) == STT_FUNC,
                               .local = ELF64_ST_BIND(symbol.st_info) == STB_LOCAL,
                               .address = symbol.st_value});
        }
    }
    return symbols;
}

std::string ElfFile::ReadAt(std::uint64_t address, std::size_t count) const {
    for (auto const& segment : GetSegments()) {
        bool const holds = address >= segment.p_vaddr && address - segment.p_vaddr < segment.p_filesz;
        if (segment.p_type == PT_LOAD && holds)
            return bytes.substr(segment.p_offset + address - segment.p_vaddr, count);
    }
    return {};
}

} // namespace zarn::test
