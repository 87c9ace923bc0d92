# SPDX-License-Identifier: Apache-2.0

"""Hosts for tests of Ansible. All are this machine; each has the capture of a machine of its own."""

import json
import os
import pathlib
import re
import shutil
import socket
import subprocess
import tarfile


class Hosts:
    """An inventory in a directory, and what Ansible does with its hosts."""

    def __init__(self, directory, source, program):
        self.directory = pathlib.Path(directory)
        self.source = pathlib.Path(source)
        self.program = program
        self.lines = []

    def unpack_example(self, name):
        with tarfile.open(self.source / "examples" / (name + ".tar.gz")) as archive:
            archive.extractall(self.directory / name)

    def capture_of(self, host):
        return self.directory / "captures" / host

    def give_capture(self, host, example):
        """The machine of the example under the name of the host. The files are links to those of the example."""
        capture = self.capture_of(host)
        shutil.rmtree(capture, ignore_errors=True)
        shutil.copytree(self.directory / example, capture, copy_function=os.link)
        manifest = json.loads((capture / "manifest.json").read_text())
        replace(capture / "manifest.json", json.dumps({**manifest, "systemName": host}))

    def add(self, host, **variables):
        self.lines.append(" ".join([host] + [f"{name}={value}" for name, value in variables.items()]))

    def add_machine(self, host, example):
        self.give_capture(host, example)
        self.add(host)

    def add_unreachable(self, host):
        self.add(host, ansible_connection="ssh", ansible_host="127.0.0.1", ansible_port=closed_port())

    def add_with_program(self, host, text):
        """A host with another program instead of pciinfo, a shell script."""
        script = self.directory / (host + ".sh")
        script.write_text("#!/bin/sh\n" + text + "\n")
        script.chmod(0o755)
        self.add(host, pciinfo_program=script)

    def write_inventory(self):
        options = json.dumps(["--root", str(self.directory / "captures/{{ inventory_hostname }}")])
        common = {
            "ansible_connection": "local",
            "ansible_python_interpreter": "/usr/bin/python3",
            "pciinfo_options": f"'{options}'",
            "pciinfo_program": self.program,
            "pciinfo_control_program": self.program,
            "pciinfo_facts_directory": self.directory / "facts/{{ inventory_hostname }}",
            "pciinfo_database": self.directory / "inventory.db",
            "pciinfo_failure_list": self.directory / "failed-hosts.txt",
        }
        self.lines += ["[all:vars]"] + [f"{name}={value}" for name, value in common.items()]
        (self.directory / "ansible.cfg").touch()  # no other settings of this machine
        (self.directory / "hosts").write_text("\n".join(self.lines) + "\n")

    def ansible(self, command, *arguments):
        """Runs the command of Ansible; returns its exit status and what it prints."""
        settings = {"ANSIBLE_CONFIG": str(self.directory / "ansible.cfg"), "ANSIBLE_HOME": str(self.directory / "home"), "ANSIBLE_FORKS": "8",
                    "ANSIBLE_PIPELINING": "1", "ANSIBLE_NOCOLOR": "1", "HOME": str(self.directory),
                    "ANSIBLE_ROLES_PATH": str(self.source / "packaging/ansible/roles"), "LC_ALL": "C.UTF-8"}
        done = subprocess.run([command, "--inventory", self.directory / "hosts", *arguments], text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              env={**os.environ, **settings}, check=False)
        return done.returncode, done.stdout


def replace(path, text):
    """Writes a file that is a link to another one, which stays as it is."""
    path.unlink()
    path.write_text(text)


def closed_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def recap(output):
    """What Ansible counts for each host: {"db1": {"ok": 3, "changed": 0, ...}}."""
    lines = re.findall(r"^(\S+) +: (ok=.*)$", output.split("PLAY RECAP", 1)[1], re.MULTILINE)
    return {host: {name: int(count) for name, count in re.findall(r"(\w+)=(\d+)", counts)} for host, counts in lines}


def changed_hosts(output):
    return {host for host, counts in recap(output).items() if counts["changed"]}
