#!/usr/bin/env python3
"""Runs the tests of a preset, then lists the skipped ones with their reasons.

    Tests/run_tests.py PRESET [CTEST-OPTION...]

Fails when a test fails, or when one is skipped that this machine could run.
"""

import fnmatch
import os
import pathlib
import shutil
import subprocess
import sys
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent


def bytes_of(path, offset, size):
    """Bytes of a file or a device; none if they can't be read."""
    try:
        with open(path, "rb", buffering=0) as file:
            file.seek(offset)
            return file.read(size)
    except OSError:
        return b""


def lacks(path, size, offset=0):
    return len(bytes_of(path, offset, size)) < size


def is_user():
    return os.geteuid() != 0


def cannot_mount():
    return subprocess.run(["unshare", "-m", "true"], stderr=subprocess.DEVNULL).returncode != 0


def lacks_pci():
    return not any(pathlib.Path("/").glob("sys/bus/pci/devices/*"))


def lacks_access_method():
    return lacks("/sys/firmware/dmi/tables/DMI", 1) or b"_SM_" not in bytes_of("/dev/mem", 0xF0000, 0x10000)


# The skips that are expected: test program, test, and the condition. No other test may be skipped.
EXPECTED = {
    "Sources/Cut.ImagesOfRealMachines*": lambda preset: not (ROOT / "../shared/tables").exists(),
    "Analysis/RealTables.*": lambda preset: not (ROOT / "../shared/tables").exists(),
    "Machine/Machine.Writes*": lambda preset: True,  # guests run these
    "Machine/Machine.Ports*": lambda preset: True,
    "Machine/Machine.PCIRegisters*": lambda preset: lacks_pci(),
    "Machine/Machine.Segments*": lambda preset: lacks("/sys/firmware/acpi/tables/MCFG", 60),
    "Machine/Machine.AnMSR*": lambda preset: lacks("/dev/cpu/0/msr", 8, 0x1B),
    "Machine/Machine.TheNonTurbo*": lambda preset: lacks("/dev/cpu/0/msr", 8, 0x10)
    or lacks("/sys/firmware/acpi/tables/FACP", 80),
    "Machine/Machine.TheBIOSArea*": lambda preset: lacks("/dev/mem", 0x10000, 0xF0000),
    "Machine/Machine.BothAccess*": lambda preset: lacks_access_method(),
    "Machine/MachineRefusals.*": lambda preset: is_user(),
    "LinuxHardware/StandIns.*": lambda preset: cannot_mount(),
    "OS/ClConfigFile.FilesThatOthers*": lambda preset: is_user(),
    "OS/Traces.*": lambda preset: preset == "coverage",
    "quorlin/Keywords.*": lambda preset: not (ROOT / "../shared/tables").exists()
    or not os.path.exists("/usr/sbin/dmidecode"),
    "quorlin/Doctor.*": lambda preset: cannot_mount(),
    "quorlin/Doctor.RootOfAnother*": lambda preset: preset == "arm64",  # the emulator has threads of its own
    "quorlin/WorstTables.*": lambda preset: preset == "asan",
    "quorlin/OnLinux.ForeignFiles*": lambda preset: preset == "asan",
    "OS/Library.*": lambda preset: preset in ("asan", "tsan"),
    "quorlin/OnLinux.AMachine*": lambda preset: cannot_mount() or preset == "windows-tests",
    "quorlin/OnLinux.*": lambda preset: preset == "windows-tests",
}

# Tests that a preset leaves out without a skip.
LEFT_OUT = {
    "tsan": "tests without threads: all other test programs, Cut.*, Traces.*",
    "windows-tests": "Cut.*, which needs AddressSanitizer, and tests for Linux only",
}
# The same for preset arm64, by names: tests within programs, and tests of ctest. Its programs run under an emulator; a
# guest runs what that can't.
NO_FILTERS = "the emulator has no seccomp filters; the guest runs it"
NO_VFORK = "the emulator's vfork is a fork, which doesn't tell that a program can't be started; the guest runs it"
TOO_LONG = "takes minutes under the emulator, and the same code runs natively; the programs' outputs are compared"
EMULATED_OUT = {
    "CrashDeathTest.*": "the emulator says itself that a signal ends a program, and not what kind of access it was; "
    "the guest runs it",
    "Cut.*": TOO_LONG,
    "Faults.*": TOO_LONG,
    "Cases/Faults.*": TOO_LONG,
    "Docs.TheSchemaOfFacts*": TOO_LONG,
    "Keywords.*": TOO_LONG,
    "Kinds/Model.*": TOO_LONG,
    "Lock.*": TOO_LONG,
    "OnLinux.ForeignFilesAnd*": TOO_LONG,
    "Ranges.OfStructuresOf*": TOO_LONG,
    "RealTables.*": TOO_LONG,
    "Rows.OfThousands*": TOO_LONG,
    "WorstTables.*": TOO_LONG,
    "NewFolders.BelongTo*": NO_FILTERS,
    "Traces.*": "the emulator has no seccomp filters, and a guest isn't a whole system; the native tests run it",
    "WholeFiles.*": NO_FILTERS,
    "OSServices.CommandLineAnd*": NO_VFORK,
    "Process.DetachedOne*": NO_VFORK,
}
EMULATED_PROGRAMS_OUT = {
    "AddOneOfEach": "of the sources; the native tests run it",
    "Downloads": "of the sources; the native tests run it",
    "Install": "builds with the installed library, which the packages' own check does",
    "Layers": "of the sources; the native tests run it",
    "Python": "this machine's Python can't load the library; the packages' own check has one that can",
    "RecordTools": "this kernel shows no MIDR; the tools read the record of the guest",
    "RunTests": "of the sources; the native tests run it",
}


def skipped_tests(folder):
    """Yields name and reason of each skipped test in a folder of result files."""
    for file in sorted(folder.glob("*.xml")):
        for case in xml.etree.ElementTree.parse(file).iter("testcase"):
            mark = case.find("skipped")
            if mark is not None:
                reason = (mark.get("message") or "").strip().splitlines()[-1:]
                yield f"{file.stem}/{case.get('classname')}.{case.get('name')}", "".join(reason)


def is_expected(name, preset):
    return any(fnmatch.fnmatchcase(name, test) and holds(preset) for test, holds in EXPECTED.items())


def report(folder, preset):
    """Prints the skipped tests. Returns the names of those that should have run."""
    skipped = list(skipped_tests(folder))
    unexpected = [name for name, _ in skipped if not is_expected(name, preset)]
    print(f"Skipped tests: {len(skipped)}, of them unexpected: {len(unexpected)}")
    for name, reason in skipped:
        print(f"  {'UNEXPECTED: ' if name in unexpected else ''}{name}: {reason}")
    if preset in LEFT_OUT:
        print(f"Left out: {LEFT_OUT[preset]}")
    if preset == "arm64":
        print("Left out:")
        for name, reason in (EMULATED_PROGRAMS_OUT | EMULATED_OUT).items():
            print(f"  {name}: {reason}")
    return unexpected


def main():
    preset = sys.argv[1]
    results = ROOT / "build" / preset / "results"
    shutil.rmtree(results, ignore_errors=True)
    command = ["ctest", "--preset", preset, "--parallel", str(os.cpu_count()), *sys.argv[2:]]
    environment = dict(os.environ)
    if preset == "arm64":
        command += ["--exclude-regex", f"^({'|'.join(EMULATED_PROGRAMS_OUT)})$"]
        environment["GTEST_FILTER"] = "-" + ":".join(EMULATED_OUT)
    failed = subprocess.run(command, cwd=ROOT, env=environment).returncode
    return 1 if report(results, preset) else failed


if __name__ == "__main__":
    sys.exit(main())
