"""Output that cannot be written is status 4 and never 0; a report's file appears only when it is whole."""

import json
import os
import shutil
import stat
import subprocess
import tempfile
import unittest

from program import LITTLE, PROGRAM, ProgramTest

AS_ROOT = os.geteuid() == 0
FORMATS = ("text", "html", "json", "jsonl", "md", "csv", "xlsx")
ENDINGS = {"text": "txt"}  # of the other formats, their names
ENDED_BY_A_LIMIT = "ulimit -f 1; "  # no file may have more than 1024 bytes


class Output(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("data.csv", "a,b\n1,x\n2,y\n")
        self.write("big.csv", "\n".join([",".join(f"v{i}" for i in range(600))] + [",".join("1" * 600)] * 3))
        os.mkdir(self.path("out"))

    def assert_not_written(self, result, *words):
        self.assert_status(result, 4)
        self.assert_says(result, "codebook: error: ", *words)

    def each_format(self):
        """Name of each format, and of a file of it in the folder out."""
        return [(name, f"out/report.{ENDINGS.get(name, name)}") for name in FORMATS]

    def assert_folder_holds(self, *names):
        self.assertEqual(sorted(os.listdir(self.path("out"))), sorted(names))

    def test_standardOutputClosed(self):
        for format_, _ in self.each_format():
            self.assert_not_written(self.run_shell(f'"$program" data.csv -F {format_} >&-'), "standard output")

    def test_theProgramWritesTheseFormats(self):
        told = self.run_program("--help").out.decode()
        self.assertIn(", ".join(FORMATS), told)

    def test_standardOutputClosedForHelpAndVersion(self):
        for option in ("--help", "--version"):
            self.assert_status(self.run_shell(f'"$program" {option} >&-'), 4)

    def test_closedStandardOutputIsNotTakenByAFile(self):
        before = self.read("data.csv")
        self.run_shell('"$program" data.csv <&- >&- 2>&-')
        self.assertEqual(self.read("data.csv"), before)

    def test_allStandardStreamsClosed(self):
        self.assert_status(self.run_shell('"$program" data.csv <&- >&- 2>&-'), 4)

    def test_deviceFull(self):
        for name in ("data.csv", "big.csv"):
            self.assert_not_written(self.run_shell(f'"$program" {name} >/dev/full'), "standard output", "No space left")
            self.assert_not_written(self.run_program(name, "-F", "json", "-o", "/dev/full"), "/dev/full", "No space left")

    def test_deviceFullInEveryFormat(self):
        for format_, _ in self.each_format():
            self.assert_not_written(self.run_shell(f'"$program" data.csv -F {format_} >/dev/full'), "standard output", "No space left")
            self.assert_not_written(self.run_program("data.csv", "-F", format_, "-o", "/dev/full"), "/dev/full", "No space left")

    def test_fileThatMayNotGrowInEveryFormat(self):
        for format_, target in self.each_format():
            self.write(target, "older")
            result = self.run_shell(f'{ENDED_BY_A_LIMIT} "$program" big.csv -F {format_} -o {target}')
            self.assert_not_written(result, "File too large")
            self.assertEqual(self.read(target), b"older")
            self.assert_folder_holds(os.path.basename(target))
            os.remove(self.path(target))

    def test_temporaryFilesThatCannotBeMadeOrWrittenAreNamed(self):
        self.write("out/report.xlsx", "older")
        result = self.run_program("data.csv", "-o", "out/report.xlsx", TMPDIR="/nonexistent/folder")
        self.assert_not_written(result, "/nonexistent/folder", "No such file")
        self.assertEqual(self.read("out/report.xlsx"), b"older")
        self.assert_folder_holds("report.xlsx")

    def test_temporaryFilesHaveNoNames(self):
        self.assert_done(self.run_program("data.csv", "-o", "report.xlsx", TMPDIR=self.path("out")))
        self.assert_folder_holds()

    def test_standardErrorFullHarmsNothing(self):
        result = self.run_shell('"$program" data.csv -F json -c "CODEBOOK /STATISTICS NONE /FILEINFO." 2>/dev/full')
        self.assert_status(result, 0)
        self.assertEqual(json.loads(result.out)["format"], "codebook-report/1")

    def test_pipeClosedByItsReaderInEveryFormat(self):
        for format_, _ in self.each_format():
            with subprocess.Popen([PROGRAM, "big.csv", "-F", format_], stdout=subprocess.PIPE, stderr=subprocess.PIPE, cwd=self.folder) as run:
                run.stdout.close()
                err = run.stderr.read()
                self.assertEqual(run.wait(), 4, err)
                self.assertIn(b"Broken pipe", err)

    def test_pipeClosedByItsReader(self):
        with subprocess.Popen([PROGRAM, "big.csv"], stdout=subprocess.PIPE, stderr=subprocess.PIPE, cwd=self.folder) as run:
            run.stdout.close()
            err = run.stderr.read()
            self.assertEqual(run.wait(), 4, err)
            self.assertIn(b"Broken pipe", err)

    def test_folderThatIsNotThere(self):
        for format_, target in self.each_format():
            missing = "nosuch/" + target
            self.assert_not_written(self.run_program("data.csv", "-o", missing), missing, "No such file")

    def test_outputThatIsADirectory(self):
        for format_, _ in self.each_format():
            self.assert_not_written(self.run_program("data.csv", "-F", format_, "-o", "out"), "out", "directory")
            self.assert_folder_holds()

    def test_fileThatMayNotBeWritten(self):
        self.write("out/report.json", "older")
        os.chmod(self.path("out/report.json"), 0o444)
        os.chmod(self.path("out"), 0o777)
        done = self.run_bound_by_permissions("data.csv", "-o", "out/report.json")
        self.assertEqual(done.status, 4, done)
        self.assertIn(b"out/report.json cannot be written: Permission denied", done.err)
        self.assertEqual(self.read("out/report.json"), b"older")
        self.assert_folder_holds("report.json")

    def test_folderThatMayNotBeWritten(self):
        os.chmod(self.path("out"), 0o555)
        for format_, target in self.each_format():
            done = self.run_bound_by_permissions("data.csv", "-o", target)
            self.assertEqual(done.status, 4, done)
            self.assertIn(f"{target} cannot be written: Permission denied".encode(), done.err)
            self.assert_folder_holds()

    def small_disk(self, options):
        """A folder that is a file system of its own."""
        if not AS_ROOT:
            self.skipTest("a small file system can be made by root only")
        disk = tempfile.mkdtemp(prefix="disk.")
        self.addCleanup(os.rmdir, disk)
        made = subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", disk], capture_output=True, check=False)
        if made.returncode != 0:
            self.skipTest(f"no file system can be mounted here: {made.stderr.decode()}")
        self.addCleanup(subprocess.run, ["umount", disk], check=True)
        return disk

    def test_diskFullLeavesTheOlderFileAndNoPart(self):
        disk = self.small_disk("size=16k")
        for format_, target in self.each_format():
            target = os.path.join(disk, os.path.basename(target))
            with open(target, "w", encoding="utf-8") as file:
                file.write("older")
            self.assert_not_written(self.run_program("big.csv", "-o", target), target, "No space left")
            self.assertEqual(os.listdir(disk), [os.path.basename(target)])
            with open(target, encoding="utf-8") as file:
                self.assertEqual(file.read(), "older")
            os.remove(target)

    def test_diskFullOfTemporaryFiles(self):
        disk = self.small_disk("size=16k")
        self.assert_not_written(self.run_program("big.csv", "-o", "out/report.xlsx", TMPDIR=disk), disk, "No space left")
        self.assert_folder_holds()

    def test_fileSystemThatIsReadOnly(self):
        disk = self.small_disk("size=64k")
        with open(os.path.join(disk, "report.json"), "w", encoding="utf-8") as file:
            file.write("older")
        subprocess.run(["mount", "-o", "remount,ro", disk], check=True)
        for format_, target in self.each_format():
            target = os.path.join(disk, os.path.basename(target))
            self.assert_not_written(self.run_program("data.csv", "-o", target), target, "Read-only file system")
        self.assertEqual(os.listdir(disk), ["report.json"])

    def test_olderFileIsReplacedWholeAndKeepsItsPermissions(self):
        self.write("out/report.json", "older " * 100000)
        os.chmod(self.path("out/report.json"), 0o640)
        self.assert_done(self.run_program("data.csv", "-o", "out/report.json"))
        json.loads(self.read("out/report.json"))
        self.assertEqual(stat.S_IMODE(os.stat(self.path("out/report.json")).st_mode), 0o640)
        self.assert_folder_holds("report.json")

    def test_olderFileOfEveryFormatIsReplaced(self):
        for format_, target in self.each_format():
            self.write(target, "older")
            self.assert_done(self.run_program("data.csv", "-c", LITTLE, "-o", target))
            self.assertNotEqual(self.read(target)[:5], b"older")
            self.assert_folder_holds(os.path.basename(target))
            os.remove(self.path(target))

    def test_sameReportSameBytesInEveryFormat(self):
        for format_, target in self.each_format():
            self.assert_done(self.run_program("data.csv", "-o", target))
            written = self.read(target)
            os.remove(self.path(target))
            self.assertEqual(self.run_program("data.csv", "-F", format_, "--threads", "1").out, written)

    def test_nothingButMessages(self):
        for format_, target in self.each_format():
            for command in ("NOSUCH a.", "CODEBOOK nosuch.", ""):
                result = self.run_program("data.csv", "-c", command, "-o", target)
                self.assertIn(result.status, (0, 1), result)
                self.assertNotIn("internal", result.messages())
                self.assertTrue(os.path.exists(self.path(target)))
                os.remove(self.path(target))

    def test_newFileHasTheUsualPermissions(self):
        self.assert_done(self.run_shell('umask 027; exec "$program" data.csv -o out/report.json'))
        self.assertEqual(stat.S_IMODE(os.stat(self.path("out/report.json")).st_mode), 0o640)

    def test_linkStaysAndItsTargetIsReplaced(self):
        self.write("out/target.json", "older")
        os.symlink("target.json", self.path("out/report.json"))
        self.assert_done(self.run_program("data.csv", "-o", "out/report.json"))
        self.assertTrue(os.path.islink(self.path("out/report.json")))
        json.loads(self.read("out/target.json"))
        self.assert_folder_holds("report.json", "target.json")

    def test_unreadableDataLeavesTheOlderFile(self):
        self.write("out/report.json", "older")
        self.assert_status(self.run_program("nosuch.csv", "-o", "out/report.json"), 3)
        self.assertEqual(self.read("out/report.json"), b"older")
        self.assert_folder_holds("report.json")

    def test_messagesAreToldThoughTheReportIsLost(self):
        self.assert_not_written(self.run_shell('"$program" data.csv -c "CODEBOOK /STATISTICS NONE /FILEINFO." >/dev/full'), "< FILEINFO >")

    def test_reportMayGoToAPipeWithAName(self):
        os.mkfifo(self.path("pipe.json"))
        with subprocess.Popen([PROGRAM, "data.csv", "-c", LITTLE, "-o", "pipe.json"], cwd=self.folder) as run:
            self.assertEqual(json.loads(self.read("pipe.json"))["format"], "codebook-report/1")
            self.assertEqual(run.wait(), 0)
        self.assertTrue(stat.S_ISFIFO(os.stat(self.path("pipe.json")).st_mode))


if __name__ == "__main__":
    unittest.main()
