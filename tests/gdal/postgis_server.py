"""A PostgreSQL with PostGIS of a test's own, on a socket in a temporary folder."""

import glob
import os
import pwd
import shutil
import subprocess
import tempfile

# A sanitizer that is put before our own programs has nothing to do with the server's.
ENVIRONMENT = {name: value for name, value in os.environ.items() if name not in ("LD_PRELOAD", "LD_LIBRARY_PATH")}


class Server:
    def __init__(self) -> None:
        self.folder = tempfile.mkdtemp(prefix="vkm-pg")
        self.programs = sorted(glob.glob("/usr/lib/postgresql/*/bin"))[-1]
        # The server refuses to run as root.
        self.user = "postgres" if os.getuid() == 0 else pwd.getpwuid(os.getuid()).pw_name
        os.chmod(self.folder, 0o755)
        data = os.path.join(self.folder, "data")
        os.mkdir(data)
        if os.getuid() == 0:
            shutil.chown(self.folder, self.user)
            shutil.chown(data, self.user)
        self.run("initdb", "-D", data, "-A", "trust", "-U", "test", "--no-sync")
        options = f"-c listen_addresses='' -c unix_socket_directories={self.folder} -c fsync=off"
        self.run("pg_ctl", "-D", data, "-w", "-o", options, "-l", os.path.join(self.folder, "log"), "start")
        self.connection = f"host={self.folder} user=test dbname=postgres"
        self.sql("CREATE EXTENSION postgis")

    def run(self, program: str, *arguments: str) -> None:
        command = [os.path.join(self.programs, program), *arguments]
        if os.getuid() == 0:
            command = ["runuser", "-u", self.user, "--", *command]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, cwd=self.folder, env=ENVIRONMENT)

    def sql(self, statement: str) -> list[list[str]]:
        command = [os.path.join(self.programs, "psql"), "-qAtX", "-F", "\x1f", "-v", "ON_ERROR_STOP=1", "-c", statement, self.connection]
        run = subprocess.run(command, check=True, capture_output=True, text=True, env=ENVIRONMENT)
        return [line.split("\x1f") for line in run.stdout.splitlines()]

    def stop(self) -> None:
        self.run("pg_ctl", "-D", os.path.join(self.folder, "data"), "-m", "immediate", "stop")
        shutil.rmtree(self.folder)
