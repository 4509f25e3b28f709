// What doctor says of ports, model-specific registers and CPUID.
#include "Tests/Tools/quorlin/Linux/Doctor.h"

#include <linux/seccomp.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>

#include <csignal>

namespace {

constexpr uint32_t kErrno = SECCOMP_RET_ERRNO;

TEST_F(Doctor, TheMSRModuleIsMissing) {
    EXPECT_EQ(Diagnose().Of("msr"), "no-msr-module");
    // It is there, and its files aren't; a processor without the register.
    m_dev->Write("drivers", "Character devices:\n202 cpu/msr\n");
    EXPECT_EQ(mount("/dev/drivers", "/proc/devices", nullptr, MS_BIND, nullptr), 0);
    EXPECT_EQ(Diagnose().Of("msr"), "no-device");
    umount("/proc/devices");
    for (long cpu = 0; cpu < sysconf(_SC_NPROCESSORS_ONLN); ++cpu)
        m_dev->Write("cpu/" + std::to_string(cpu) + "/msr", "short");
    EXPECT_EQ(Diagnose().Of("msr"), "no-register");
}

// Files that were made without a driver for them, as in a container.
TEST_F(Doctor, ADeviceFileWithoutADriverIsNone) {
    constexpr unsigned kExperimental = 240;
    ASSERT_EQ(mkdir("/dev/cpu", 0755) + mkdir("/dev/cpu/0", 0755), 0);
    for (const char* file : {"/dev/mem", "/dev/cpu/0/msr"})
        ASSERT_EQ(mknod(file, S_IFCHR | 0600, makedev(kExperimental, 0)), 0) << file;
    const Diagnosis_t diagnosis = Diagnose();
    EXPECT_EQ(diagnosis.Of("memory"), "no-device") << diagnosis.output;
    EXPECT_EQ(diagnosis.Of("msr"), "no-msr-module") << diagnosis.output;
}

// Offline processors have no numbers here. Number 256 means any processor, and works everywhere.
TEST_F(Doctor, ProcessorsAreCountedWithoutGapsUpTo256) {
    const ClFolderOver cpus("/sys/devices/system/cpu");
    cpus.Write("online", "1,3\n");
    m_dev->Write("cpu/1/msr", std::string(32, '\1'));
    m_dev->Write("cpu/3/msr", std::string(32, '\1'));
    const std::string gaps = Diagnose().output;
    EXPECT_NE(gaps.find("\nmsr,Model-specific registers,0,1,true,"), gaps.npos) << gaps;
    cpus.Write("online", "0-299\n");
    const std::string many = Diagnose().output;
    EXPECT_NE(many.find(",255,false,no-msr-module,"), many.npos) << many;
    for (const char* row : {"\nmsr,Model-specific registers,256,299,false,no-number,", ",255,false,cpuset,",
                            "\ncpuid,CPUID,256,299,false,no-number,"})
        EXPECT_NE(many.find(row), many.npos) << row << many;
}

// Refused, not there, and deadly.
TEST_F(Doctor, AFilterKeepsPortsAway) {
    for (const uint32_t action : {kErrno | EPERM, kErrno | ENOSYS, uint32_t{SECCOMP_RET_KILL_PROCESS}}) {
        const Diagnosis_t diagnosis = Diagnose([action] {
            std::signal(SIGCHLD, SIG_IGN);  // as some parents leave it
            ForbidCall({SYS_ioperm}, action);
        });
        EXPECT_EQ(diagnosis.Of("ports"), "seccomp") << action << "\n" << diagnosis.output;
        EXPECT_EQ(diagnosis.Of("cpuid"), "") << action << "\n" << diagnosis.output;
    }
}

// What a cpuset without the processor answers.
TEST_F(Doctor, AForeignCpusetKeepsProcessorsAway) {
    const auto leaveCpuset = [] { ForbidCall({SYS_sched_setaffinity}, kErrno | EINVAL); };
    const Diagnosis_t diagnosis = Diagnose(leaveCpuset);
    EXPECT_EQ(diagnosis.Of("cpuid"), "cpuset") << diagnosis.output;
    for (long cpu = 0; cpu < sysconf(_SC_NPROCESSORS_ONLN); ++cpu)
        m_dev->Write("cpu/" + std::to_string(cpu) + "/cpuid", std::string(64, 'x'));
    const Diagnosis_t byFile = Diagnose(leaveCpuset);
    EXPECT_EQ(byFile.Of("cpuid"), "") << byFile.output;
    EXPECT_TRUE(byFile.output.find("read from /dev/cpu/*/cpuid") != std::string::npos) << byFile.output;
}

}  // namespace
