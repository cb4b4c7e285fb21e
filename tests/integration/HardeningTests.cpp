// The programs are built so that a fault in them is harder to use.

#include <cstring>
#include <elf.h>
#include <set>
#include <span>

#include <gtest/gtest.h>

#include "foundation/Files.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Sanitizers.hpp"

namespace zelto::test {
namespace {

/// What of a program's file a loader reads.
class Program {
  public:
    explicit Program(const std::filesystem::path& path)
        : bytes_(readFile(path, std::size_t{1} << 30).value_or("")) {
        if (bytes_.size() < sizeof(Elf64_Ehdr)) return;
        header_ = at<Elf64_Ehdr>(0);
        for (std::size_t i = 0; i < header_.e_phnum; ++i) {
            const auto segment = at<Elf64_Phdr>(header_.e_phoff + i * header_.e_phentsize);
            if (segment.p_type == PT_DYNAMIC) readDynamic(segment);
            if (segment.p_type == PT_GNU_RELRO) hasRelro = true;
            if (segment.p_type == PT_GNU_STACK) stackIsRunnable = (segment.p_flags & PF_X) != 0;
        }
        for (std::size_t i = 0; i < header_.e_shnum; ++i) {
            const auto section = at<Elf64_Shdr>(header_.e_shoff + i * header_.e_shentsize);
            if (section.sh_type == SHT_DYNSYM) readSymbols(section);
        }
    }

    bool isPIE() const { return header_.e_type == ET_DYN && (flags1 & DF_1_PIE) != 0; }
    bool bindsNow() const { return (flags1 & DF_1_NOW) != 0; }
    bool imports(const char* name) const { return symbols.contains(name); }
    /// Instructions at which indirect branches may arrive (endbr64).
    std::size_t landingPlaces() const {
        std::size_t count = 0;
        for (std::size_t at = 0; (at = bytes_.find("\xf3\x0f\x1e\xfa", at)) != std::string::npos; at += 4)
            ++count;
        return count;
    }
    bool importsFortified() const {
        for (const std::string& name : symbols)
            if (name.starts_with("__") && name.ends_with("_chk")) return true;
        return false;
    }

    bool hasRelro = false, stackIsRunnable = true;
    std::uint64_t flags1 = 0;
    std::set<std::string> symbols;

  private:
    template <class T>
    T at(std::size_t offset) const {
        T out{};
        if (offset + sizeof(T) <= bytes_.size()) std::memcpy(&out, bytes_.data() + offset, sizeof(T));
        return out;
    }
    void readDynamic(const Elf64_Phdr& segment) {
        for (std::size_t i = 0; i < segment.p_filesz; i += sizeof(Elf64_Dyn)) {
            const auto entry = at<Elf64_Dyn>(segment.p_offset + i);
            if (entry.d_tag == DT_FLAGS_1) flags1 = entry.d_un.d_val;
        }
    }
    void readSymbols(const Elf64_Shdr& section) {
        const auto names = at<Elf64_Shdr>(header_.e_shoff + section.sh_link * header_.e_shentsize);
        for (std::size_t i = 0; i < section.sh_size; i += sizeof(Elf64_Sym)) {
            const auto symbol = at<Elf64_Sym>(section.sh_offset + i);
            const std::size_t begin = names.sh_offset + symbol.st_name;
            if (begin < bytes_.size()) symbols.insert(bytes_.c_str() + begin);
        }
    }

    std::string bytes_;
    Elf64_Ehdr header_{};
};

TEST(Programs, AreHardened) {
    for (const char* name : {"zelto-widgets", "zelto-pictures", "zelto-desktop", "zelto"}) {
        const Program program(programFolder() / name);
        EXPECT_TRUE(program.isPIE()) << name;
        EXPECT_TRUE(program.hasRelro) << name;
        EXPECT_TRUE(program.bindsNow()) << name;
        EXPECT_FALSE(program.stackIsRunnable) << name;
        EXPECT_TRUE(program.imports("__stack_chk_fail")) << name;
        if (!isSanitized) {
            EXPECT_TRUE(program.importsFortified()) << name;
            EXPECT_TRUE(program.imports("_ZSt21__glibcxx_assert_failPKciS0_S0_")) << name;
        }
#ifdef __x86_64__
        // The programs' own code has them. Whether the processor looks is for the C library's start-up code
        // to say, which Debian 12 builds without.
        EXPECT_GT(program.landingPlaces(), 100U) << name;
#endif
    }
}

}  // namespace
}  // namespace zelto::test
