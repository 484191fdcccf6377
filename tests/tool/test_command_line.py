"""The command line itself: help, languages, devices to choose from, refusals and their exit codes."""
import json
import os
import re
import shlex
import shutil
import subprocess
import unittest

from command_line import IS_WINDOWS, TOOL, CommandTest, read, write

FAULTY = os.environ.get("TEMBRA_FAULTY_LIBRARIES")  # none in the build for Windows

# How each shell prints what it offers for $LINE, once it has read the script `completion`.
SHELLS = {
    "bash": ("bash", "-c", """
        source ./completion
        compopt() { compgen -f -- "${COMP_WORDS[COMP_CWORD]}" >offered; exit; }  # works at a prompt only
        read -ra COMP_WORDS <<<"$LINE"
        [[ $LINE != *' ' ]] || COMP_WORDS+=('')
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        _tembrakey
        printf '%s\\n' "${COMPREPLY[@]}" >offered"""),
    "zsh": ("script", "-qec", "zsh -i", "/dev/null"),  # completes at a terminal only
    "fish": ("fish", "--no-config", "-c", "source ./completion; complete -C $LINE >offered"),
}
ZSHRC = b"""
    autoload -Uz compinit && compinit -D -u
    source ./completion
    compadd() {
        local -a new
        [[ ${@[1,(i)(-|--)]} == *-[ADO]\\ * ]] || builtin compadd -O new "$@"
        offered+=($new)
        builtin compadd "$@"
    }
    capture() { _main_complete }
    zle -C capture complete-word capture
    zle-line-init() {
        BUFFER=$LINE CURSOR=$#LINE
        zle capture
        print -rl -- $offered >offered
        exit
    }
    zle -N zle-line-init"""


class CommandLine(CommandTest):
    def commands(self, *path):
        """Every command, as a list of words, from the help of the tool."""
        text = self.run_tool(*path, "--help").decode()
        section = re.search(r"Commands:\r?\n(.*?)\r?\n\r?\n", text + "\n\n", re.S)
        if not section:
            return [path]
        names = [name for name in re.findall(r"^  (\w+) ", section.group(1), re.M) if name != "help"]
        return [command for name in names for command in self.commands(*path, name)]

    def test_every_command_explains_itself_with_examples(self):
        # Wine takes seconds for each.
        commands = [("list",), ("key", "generate"), ("doctor",)] if IS_WINDOWS else self.commands()
        self.assertGreater(len(commands), 2 if IS_WINDOWS else 25)
        for command in commands:
            with self.subTest(command=command):
                text = self.run_tool(*command, "--help").decode()
                self.assertIn(f"tembrakey {' '.join(command)}", text.split("Examples:")[1])

    def test_no_command_shows_english_in_chinese(self):
        commands = [("pin", "change")] if IS_WINDOWS else self.commands()
        names = sorted(map(" ".join, commands), key=len, reverse=True)
        write("letter", b"Dear Bob")
        pin, key = ("--pin-env", "PIN"), ("--key-hex", "00" * 16, "--iv", "00" * 16, "--pad")
        runs = [(*command, "--help") for command in commands] + [() if IS_WINDOWS else ("--help",)]
        runs += [] if IS_WINDOWS else [
            ("token", "list"), ("key", "generate", "--label", "k", *pin), ("list", "--long"), ("caps",),
            ("login", *pin), ("pin", "verify", *pin), ("pin", "retries"),
            ("pin", "unblock", "--so-pin-env", "SO", "--new-pin-env", "NEW"),
            ("pin", "change", "--pin-env", "NEW", "--new-pin-env", "PIN"),
            ("key", "export", "--label", "k", "--out", "k.pem"), ("sign", "letter", "--out", "letter.sig", *pin),
            ("verify", "letter", "--signature", "letter.sig", "--key", "k.pem"),
            ("encrypt", "letter", *key, "--out", "secret"), ("decrypt", "secret", *key, "--out", "plain"),
            ("hash", "letter", "--json"), ("random", "4", "--out", "noise"),
            ("data", "create", "1", "--size", "8", *pin), ("data", "write", "1", "letter", *pin),
            ("data", "read", "1", "--out", "object", *pin), ("data", "delete", "1", "--yes", *pin),
            ("key", "delete", "--label", "k", "--yes", *pin), ("doctor",), ("token", "remove", "AAAA0001", "--yes")]
        for run in filter(None, runs):
            with self.subTest(run=run):
                text = self.run_tool(*run, LC_ALL="zh_CN.UTF-8").decode() + self.stderr
                text = re.sub("\n用法.*|\n示例(.|\n)*|\n  -.*?(?=  |\n)", "", text.replace("\r", ""))
                for name in names:
                    text = text.replace(name, "")
                self.assertEqual(re.findall("[A-Za-z]*[a-z]{2} [a-z]{2,}", text), [], text)

    def test_the_manual_page_has_every_command_and_is_sound(self):
        page = self.run_tool("man").decode()
        for command in [("doctor",)] if IS_WINDOWS else self.commands():
            self.assertIn(f".SS tembrakey {' '.join(command)}", page)
        if not shutil.which("groff"):
            return
        done = subprocess.run(["groff", "-man", "-ww", "-z"], input=page.encode(), capture_output=True,
                              check=True)
        self.assertEqual(done.stderr, b"")

    def complete(self, shell, line):
        """What the shell offers for the line, at whose end the cursor stands; of files the last name."""
        done = subprocess.run(SHELLS[shell], capture_output=True, check=True, timeout=60,
                              env={**self.environment, "LINE": line, "ZDOTDIR": self.folder, "HOME": self.folder,
                                   "PATH": f"{os.path.dirname(TOOL[0])}:{os.environ['PATH']}"})
        self.assertEqual(done.stderr, b"")
        offered = read("offered").decode().replace("\\", "").splitlines()  # quoted where bash needs it or not
        return {os.path.basename(row.split("\t")[0]) for row in offered} - {""}

    @unittest.skipIf(IS_WINDOWS, "of shells of Linux")
    def test_shells_complete_commands_options_and_values(self):
        os.mkdir("d")
        write("d/letter.txt", b"")
        write(".zshrc", ZSHRC)
        for shell in filter(shutil.which, SHELLS):
            write("completion", self.run_tool("completion", shell))
            for line, expected in (("ke", "key"), ("key g", "generate"), ("key generate --al", "--algo"),
                                   ("key generate --algo ", "sm2 rsa"), ("--json key generate --algo r", "rsa"),
                                   ("--device 0 key g", "generate"), ("key generate --pr", "--provider"),
                                   ("key generate --algo=r", "--algo=rsa"),
                                   ("sign d/l", "letter.txt"), ("sign -o d/", "letter.txt"),
                                   ("help key d", "delete"), ("trace x --entry DeviceEnd,DeviceIn",
                                                              "DeviceEnd,DeviceInit"),
                                   ("sign d/letter.txt --pin-env TEMBRA_SOFT_TOKEN_D", "TEMBRA_SOFT_TOKEN_DIR"),
                                   ("completion ", "bash zsh fish"), ("list x", "")):
                with self.subTest(shell=shell, line=line):
                    self.assertEqual(self.complete(shell, f"tembrakey {line}"), set(expected.split()))

    def test_connected_tokens_complete_labels_and_serial_numbers(self):
        self.make_key("alice smith")
        for words, expected in ((("--device", ""), "AAAA0001\tTest\n"), (("sign", "--label=a"), "--label=alice smith"),
                                (("token", "remove", "A"), "AAAA0001\t"), (("key", "delete", "-l", ""), "alice smith\t")):
            for _ in range(10):  # a busy machine may take longer than the child is given
                offered = self.run_tool("__complete", *words).decode().replace("\r", "")
                if offered:
                    break
            self.assertTrue(offered.startswith(expected), offered)
        self.assertEqual(self.run_tool("__complete", "--device", "other", "sign", "--label", ""), b"")
        self.assertFalse(os.path.exists("trace.log"))

    @unittest.skipUnless(FAULTY, "needs the libraries with faults")
    def test_completion_outlives_libraries_that_hang_crash_or_print(self):
        os.mkdir("install")
        for name in (f"{os.path.dirname(TOOL[-1])}/libTembraKeyProv.so", f"{os.path.dirname(TOOL[-1])}/libORVEL_CRYPTO.so",
                     f"{FAULTY}/faulty-token/libQXSKFAPI.so"):
            shutil.copy(name, "install")
        for fault in ("hang in SKF_EnumDev", "abort when loaded", "output"):
            with self.subTest(fault=fault):
                words = ("--provider", "install/libTembraKeyProv.so", "--device", "")
                offered = self.run_tool("__complete", *words, TEMBRA_TEST_FAULT=fault).decode()
                self.assertIn(offered, ("", "S1\n") if fault == "output" else ("",))

    def test_refusals_say_why_and_in_json_too(self):
        write("empty", b"")
        for code, text, *arguments in (
                (2, "unknown command frobnicate (see", "frobnicate"), (2, "a command is required", "key"),
                (2, "did you mean sign? (see tembrakey --help)", "sgin", "--help"),
                (2, "did you mean generate? (see tembrakey key --help)", "help", "key", "genrate"),
                (2, "did you mean key generate?", "generate"), (2, "did you mean --label?", "sign", "--lable=x"),
                (2, "--label is required", "key", "generate"), (2, "N is required", "random"),
                (2, "unknown option --colour (see", "list", "--colour=red"), (2, "unexpected argument x", "list", "x"),
                (2, "N: \"0x\" is not a number from 1", "random", "0x"),
                (2, "N: \"-5\" is not a number from 1", "random", "--", "-5"),
                (2, "--algo: \"dsa\" is not one of sm2|rsa", "key", "generate", "--algo", "dsa"),
                (2, "--label needs a value", "key", "generate", "--label"),
                (2, "--device may be given only once", "--device", "0", "--device", "1", "list"),
                (2, "--so takes no value", "login", "--so=x"),
                (2, "--pin-env and --pin-fd cannot be combined", "login", "--pin-fd", "3", "--pin-env", "PIN"),
                (2, "未知命令 frobnicate（见", "frobnicate"), (2, "缺少命令", "key"),
                (2, "缺少 --label", "key", "generate"), (2, "多余的参数 x（见 tembrakey list --help）", "list", "x"),
                (2, "“0x”不是 1 到", "random", "0x"), (2, "--out 缺少值", "random", "4", "--out"),
                (2, "use --label, --key or --cert", "verify", "empty", "--signature", "empty"),
                (3, "no device 5", "--device", "5", "list"),
                (3, "nobody", "sign", "empty", "--label", "nobody"),
                (8, "no-such-library", "--provider", "no-such-library.so", "list"),
                (8, "empty", "--provider", "./empty", "list"),
                (9, "missing.txt", "hash", "missing.txt"),
                (2, "standard input contains neither", "verify", "empty", "--signature", "empty", "--key", "-"),
                (9, "no-folder", "random", "4", "--out", "no-folder/x"),
                (4, "--pin-env", "key", "generate", "--label", "x")):
            with self.subTest(arguments=arguments):
                language = {} if text.isascii() else {"LC_ALL": "zh_CN.UTF-8"}
                self.run_tool(*arguments, code=code, **language)
                self.assertIn(text, self.stderr)
                self.assertTrue(self.stderr.startswith("tembrakey: "))
                self.run_tool("--json", *arguments, code=code, **language)
                self.assertIn(text, json.loads(self.stderr)["error"])

    def test_of_several_devices_one_must_be_chosen(self):
        self.run_tool("token", "create", "--serial", "BBBB0002", "--label", "Two", "--so-pin-env", "SO",
                      "--pin-env", "PIN")
        self.run_tool("random", "4", code=3)
        self.run_tool("--device", "BBBB0002", "key", "generate", "--label", "k", "--pin-env", "PIN")
        for device, count in (("AAAA0001", 0), ("BBBB0002", 1)):
            listed = self.run_json("--device", device, "list")["devices"]
            self.assertEqual([(one["serial"], len(one["keyPairs"])) for one in listed],
                             [(device, count)])
        self.run_tool("token", "remove", "BBBB0002", "--yes")
        self.assertNotIn("BBBB0002", self.run_tool("token", "list").decode())
        self.run_tool("random", "4")

    def test_tokens_that_fail_are_reported_by_entry_point_and_result(self):
        failure = self.run_json("random", "4", code=1,
                                TEMBRA_SOFT_TOKEN_FAULTS="SKF_GenRandom:*=0x0A000001")
        self.assertEqual((failure["entryPoint"], failure["result"]), ("DeviceGenerateRandom", 0))
        self.run_tool("token", "create", "--unformatted", "--serial", "CCCC0003")
        self.assertFalse(self.run_json("--device", "CCCC0003", "list")["devices"][0]["formatted"])


class NoToken(CommandTest):
    token = False

    def test_nothing_is_connected(self):
        self.assertEqual(self.run_json("list"), {"devices": []})
        self.run_tool("random", "4", code=3)


if __name__ == "__main__":
    unittest.main()
