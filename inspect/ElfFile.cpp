#include "inspect/ElfFile.h"

#include <map>
#include <memory>
#include <string_view>

#include <fcntl.h>
#include <gelf.h>
#include <unistd.h>

namespace Tesseret::Inspect {

namespace {

/// An open file with libelf's view of it, which checks every offset against the file's size.
class Reader {
public:
    explicit Reader(const std::filesystem::path& path)
        : file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
        ::elf_version(EV_CURRENT);
        if (file_ >= 0) elf_ = ::elf_begin(file_, ELF_C_READ, nullptr);
    }
    ~Reader()
    {
        ::elf_end(elf_);
        if (file_ >= 0) ::close(file_);
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    bool isOpen() const { return file_ >= 0; }
    Elf* elf() const { return elf_; }
    bool isElf() const { return elf_ != nullptr && ::elf_kind(elf_) == ELF_K_ELF; }
    std::string text(std::size_t table, std::size_t offset) const
    {
        const char* const found = ::elf_strptr(elf_, table, offset);
        if (found == nullptr) throw ElfError("a name lies outside the file");
        return found;
    }

private:
    int file_;
    Elf* elf_ = nullptr;
};

struct Section {
    GElf_Shdr header{};
    Elf_Data* data = nullptr;

    int entries() const
    {
        return header.sh_entsize == 0 ? 0 : static_cast<int>(data->d_size / header.sh_entsize);
    }
};

/// The first section of a type; without data when there is none.
Section sectionOf(const Reader& reader, GElf_Word type)
{
    Elf_Scn* each = nullptr;
    while ((each = ::elf_nextscn(reader.elf(), each)) != nullptr) {
        Section section;
        if (::gelf_getshdr(each, &section.header) == nullptr || section.header.sh_type != type)
            continue;
        section.data = ::elf_getdata(each, nullptr);
        if (section.data == nullptr) throw ElfError("the file is truncated or damaged");
        return section;
    }
    return {};
}

std::string machineName(unsigned int machine)
{
    switch (machine) {
        case EM_X86_64:
            return "x86-64";
        case EM_386:
            return "x86";
        case EM_AARCH64:
            return "AArch64";
        default:
            return "machine " + std::to_string(machine);
    }
}

void readHeaders(const Reader& reader, ElfFile& result)
{
    GElf_Ehdr header{};
    std::size_t parts = 0;
    if (::gelf_getehdr(reader.elf(), &header) == nullptr ||
        ::elf_getphdrnum(reader.elf(), &parts) != 0) {
        throw ElfError("its header is damaged");
    }
    result.isSharedLibrary = header.e_type == ET_DYN;
    result.bits = ::gelf_getclass(reader.elf()) == ELFCLASS64 ? 64 : 32;
    result.machine = machineName(header.e_machine);
    for (std::size_t i = 0; i < parts; ++i) {
        GElf_Phdr part{};
        if (::gelf_getphdr(reader.elf(), static_cast<int>(i), &part) == nullptr)
            throw ElfError("its program header is damaged");
        if (part.p_type == PT_GNU_STACK) result.hasExecutableStack = (part.p_flags & PF_X) != 0;
    }
}

void addFolders(const std::string& list, std::vector<std::string>& folders)
{
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(':', begin), list.size());
        if (end > begin) folders.push_back(list.substr(begin, end - begin));
        begin = end + 1;
    }
}

void readDynamic(const Reader& reader, ElfFile& result)
{
    const Section section = sectionOf(reader, SHT_DYNAMIC);
    if (section.data == nullptr) throw ElfError("it has no dynamic section");
    for (int i = 0; i < section.entries(); ++i) {
        GElf_Dyn entry{};
        if (::gelf_getdyn(section.data, i, &entry) == nullptr || entry.d_tag == DT_NULL) break;
        const auto text = [&] { return reader.text(section.header.sh_link, entry.d_un.d_val); };
        if (entry.d_tag == DT_NEEDED) result.needed.push_back(text());
        if (entry.d_tag == DT_RPATH || entry.d_tag == DT_RUNPATH)
            addFolders(text(), result.searchFolders);
    }
}

/// The names of the versions that the library needs, by their index.
std::map<int, std::string> readVersions(const Reader& reader)
{
    std::map<int, std::string> versions;
    const Section section = sectionOf(reader, SHT_GNU_verneed);
    if (section.data == nullptr) return versions;
    // Every step leads forward; a damaged table may still visit entries again and again.
    std::size_t stepsLeft = section.data->d_size;
    std::size_t offset = 0;
    for (GElf_Verneed library{};
         ::gelf_getverneed(section.data, static_cast<int>(offset), &library) != nullptr;) {
        std::size_t inner = offset + library.vn_aux;
        GElf_Vernaux version{};
        for (int i = 0; i < library.vn_cnt; ++i) {
            if (::gelf_getvernaux(section.data, static_cast<int>(inner), &version) == nullptr)
                throw ElfError("its table of versions is damaged");
            if (stepsLeft-- == 0) throw ElfError("its table of versions is damaged");
            versions[version.vna_other] = reader.text(section.header.sh_link, version.vna_name);
            if (version.vna_next == 0) break;
            inner += version.vna_next;
        }
        if (library.vn_next == 0) break;
        offset += library.vn_next;
    }
    return versions;
}

void readSymbols(const Reader& reader, ElfFile& result)
{
    const Section section = sectionOf(reader, SHT_DYNSYM);
    if (section.data == nullptr) throw ElfError("it has no symbols");
    const Section indices = sectionOf(reader, SHT_GNU_versym);
    const std::map<int, std::string> versions = readVersions(reader);
    for (int i = 1; i < section.entries(); ++i) {
        GElf_Sym symbol{};
        if (::gelf_getsym(section.data, i, &symbol) == nullptr) break;
        std::string name = reader.text(section.header.sh_link, symbol.st_name);
        const unsigned int binding = GELF_ST_BIND(symbol.st_info);
        if (symbol.st_shndx != SHN_UNDEF) {
            if (binding != STB_LOCAL) result.exports.push_back(std::move(name));
            continue;
        }
        GElf_Versym index = 0;
        const bool isVersioned =
            indices.data != nullptr && ::gelf_getversym(indices.data, i, &index) != nullptr;
        const auto version = versions.find(isVersioned ? index & 0x7fff : 0);
        result.imports.push_back({std::move(name), version == versions.end() ? "" : version->second,
                                  binding == STB_WEAK});
    }
}

}  // namespace

ElfFile readElf(const std::filesystem::path& file)
{
    const Reader reader(file);
    if (!reader.isOpen()) throw ElfError("it cannot be read");
    if (!reader.isElf()) throw ElfError("it is not an ELF file");
    ElfFile result;
    readHeaders(reader, result);
    readDynamic(reader, result);
    readSymbols(reader, result);
    return result;
}

}  // namespace Tesseret::Inspect
