// A run of the program leaves only the files that its user names, and it runs the same where it can't leave any. It has
// its own root folder, which is compared before and after; a folder's time shows files that came and went.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Tests/Support/Linux/Processes.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kUsualFolders[] = {"/run", "/tmp", "/dev/shm", "/home"};
const std::set<std::string> kGivenFolders = {"usr", "proc", "sys", "bin", "user"};

constexpr const char* kCommands[] = {
    "--sample",
    "types --sample",
    "find --sample BIOS",
    "get --sample Manufacturer",
    "dump --sample /user/new",
    "raw --sample",
    "check --sample",
    "diff --sample /user/image",
    "--image /user/image",
    "--sample --trace Global:OutputType<Fi>;Global:FileName</user/new>;Global:TraceType<EnEx>",
    "hw cpuid 0",
    "hw pci 0000:ff:1f.7 2 5",
    "hw versions",
    // These need root.
    "",
    "--driver",
    "--road scan",
    "hw acpi FACP --out /user/new",
    "hw segments",
};
constexpr size_t kForAll = 13;  // the number of the first ones, which need no rights

class Traces : public testing::Test {
  protected:
    void SetUp() override {
        if (!ClFolderOver::IsPossible()) GTEST_SKIP() << "only root can give a process a root folder of its own";
        for (const std::string& folder : {m_root, m_user}) {
            fs::remove_all(folder);
            fs::create_directory(folder);
        }
        fs::permissions(m_user, fs::perms::all);
        ASSERT_EQ(RunQuorlin("dump --sample " + m_user + "/image").exitCode, 0);
        fs::permissions(m_user + "/image", fs::perms::others_read, fs::perm_options::add);
    }

    void Give(const std::string& folder, const std::string& as, unsigned long access) {
        const std::string place = m_root + as;
        fs::create_directory(place);
        EXPECT_EQ(mount(folder.c_str(), place.c_str(), nullptr, MS_BIND | MS_REC, nullptr), 0) << as;
        EXPECT_EQ(mount(nullptr, place.c_str(), nullptr, MS_REMOUNT | MS_BIND | access, nullptr), 0) << as;
    }

    // All files outside the given folders, with their times.
    std::map<std::string, fs::file_time_type> Look() const {
        std::map<std::string, fs::file_time_type> all = {
            {m_root, fs::last_write_time(m_root)}
        };
        for (fs::recursive_directory_iterator at(m_root), end; at != end; ++at) {
            if (at.depth() == 0 && kGivenFolders.contains(at->path().filename()))
                at.disable_recursion_pending();
            else if (!at->is_symlink())
                all[at->path()] = at->last_write_time();
        }
        return all;
    }

    // The output of a run, and the files that it left in its user's folder.
    std::string Run(const char* command, bool isStranger) {
        std::istringstream stream("/bin/" + fs::path(QUORLIN_PROGRAM).filename().string() + ' ' + command);
        const std::vector<std::string> words(std::istream_iterator<std::string>(stream), {});
        const ProgramRun_t ran = RunPrepared(words, [&] {
            if (isStranger && unshare(CLONE_NEWUSER) != 0) _exit(98);
            if (chroot(m_root.c_str()) != 0 || chdir("/") != 0) _exit(99);
        });
        std::string all = std::to_string(ran.exitCode) + '\n' + ran.output + ran.errors;
        for (const auto& file : fs::directory_iterator(m_user))
            if (file.path().filename() != "image")
                all += file.path().filename().string() + '\n' + ReadWholeFile(file.path());
        fs::remove(m_user + "/new");
        return all;
    }

    const std::string m_root = testing::TempDir() + "traces-root", m_user = testing::TempDir() + "traces-user";
};

TEST_F(Traces, NoRunLeavesAnyOrNeedsToLeaveAny) {
    const struct {
        const char* what;
        const char* folders;  // the mount options of the usual ones; null for none
        bool isReadOnly;      // the root folder
        bool isStranger;      // in a user namespace without any user
    } kSurroundings[] = {
        {"all writable",                  "mode=777",             false, false},
        {"no room in the usual folders",  "nr_inodes=1,mode=777", true,  false},
        {"a read-only root folder",       nullptr,                true,  false},
        {"a user namespace without /run", nullptr,                false, true },
    };
    std::map<size_t, std::string> expected;  // by the command's place: what the first run gave
    for (const auto& s : kSurroundings) {
        const ClFolderOver root(m_root.c_str());
        Give("/usr", "/usr", MS_RDONLY);
        Give("/proc", "/proc", 0);
        Give("/sys", "/sys", 0);
        Give(fs::path(QUORLIN_PROGRAM).parent_path(), "/bin", MS_RDONLY);
        Give(m_user, "/user", 0);
        for (const char* library : {"/lib", "/lib64"})
            if (fs::is_symlink(library)) fs::copy_symlink(library, m_root + library);
        for (const std::string folder : kUsualFolders) {
            if (s.folders == nullptr) continue;
            fs::create_directories(m_root + folder);
            EXPECT_EQ(mount("none", (m_root + folder).c_str(), "tmpfs", 0, s.folders), 0) << folder;
        }
        const unsigned long access = s.isReadOnly ? MS_RDONLY : 0;
        EXPECT_EQ(mount(nullptr, m_root.c_str(), nullptr, MS_REMOUNT | access, nullptr), 0);
        for (size_t place = 0; place < (s.isStranger ? kForAll : std::size(kCommands)); ++place) {
            const auto before = Look();
            const std::string said = Run(kCommands[place], s.isStranger);
            EXPECT_EQ(Look(), before) << s.what << ": " << kCommands[place];
            EXPECT_EQ(said, expected.emplace(place, said).first->second) << s.what;
        }
    }
    EXPECT_EQ(expected[0].substr(0, 2), "0\n") << expected[0];
}

}  // namespace
