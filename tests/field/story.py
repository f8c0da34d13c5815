"""Runs the commands of docs/field.md's story on a device of its own and compares what they print; "..." stands for
anything.

usage: story.py ROOT BUILD
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile


def commands(page):
    """Each command with the lines that it prints, from the blocks of the section."""
    story = page.split("## The story")[1].split("\n## ")[0]
    found = []
    for block in re.findall(r"```\n(.*?)```", story, re.DOTALL):
        for line in block.splitlines():
            if line.startswith("$ "):
                found.append((line[2:], []))
            else:
                found[-1][1].append(line)
    return found


def agrees(expected, printed):
    pattern = ".*".join(re.escape(part) for part in "\n".join(expected).split("..."))
    return re.fullmatch(pattern, printed.strip("\n"), re.DOTALL) is not None


def environment(root, build, device):
    """The programs on the path; `panel` is a caller whose fifth statement fails."""
    programs = device / "bin"
    programs.mkdir()
    for program in ("tools/qrysh/qrysh", "tools/field/qrylib-snapshot", "tools/field/qrylib-replay"):
        (programs / pathlib.Path(program).name).symlink_to(build / program)
    panel = programs / "panel"
    panel.write_text(f"#!/bin/sh\nexec {build}/tests/field/recorded_caller mix\n")
    panel.chmod(0o755)
    around = dict(os.environ, PATH=f"{programs}:{os.environ['PATH']}", LC_ALL="C.UTF-8",
                  LD_LIBRARY_PATH=str(build / "tools/field"), QRYLIB_FILES=str(device / "files"))
    (device / "files").mkdir()
    image = str(device / "device.img")
    subprocess.run(["qrysh", "--new", image, "--fixture", str(root / "examples/office.json"), ".quit"], env=around,
                   check=True, stdout=subprocess.DEVNULL)
    return dict(around, QRYLIB_IMAGE=image)


def main():
    root, build = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    story = commands((root / "docs/field.md").read_text(encoding="utf-8"))
    wrong = 0
    with tempfile.TemporaryDirectory() as folder:
        device = pathlib.Path(folder)
        around = environment(root, build, device)
        for command, expected in story:
            # On a workstation the records are those of the snapshot, not the device's own.
            here = {name: value for name, value in around.items() if name != "QRYLIB_IMAGE" or "qrysh" not in command}
            done = subprocess.run(command, shell=True, cwd=device, env=here, text=True, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, check=False)
            if not agrees(expected, done.stdout):
                print(f"$ {command}\nprints\n{done.stdout}\nand not\n" + "\n".join(expected))
                wrong += 1
    print(f"{len(story)} commands, {wrong} print something else")
    return 1 if wrong or len(story) < 5 else 0


sys.exit(main())
