#!/usr/bin/env python3
"""Starts PostgreSQL servers for tests, and a command beside them.

One server, or with --workers N a coordinator and N workers that it reaches through postgres_fdw. Each has its own data
folder below a temporary folder, listens on 127.0.0.1 on a free port, and is stopped by its process id. The user's own
settings are not touched: ODBCINI in the command's environment names a file of data sources, with `codebook_test` for the
(coordinating) server and `codebook_worker1` ... for the workers.

    tests/databases/postgres.py --workers 3 -- build/dev/codebook odbc:DSN=codebook_test --table survey

Exit status: the command's; 77 where PostgreSQL or its ODBC driver is not installed."""

import argparse
import glob
import os
import re
import shutil
import signal
import subprocess

from serverprocess import NotInstalled, ServerError, ServerFolder, ServerProcess, free_port, run_beside, skipped_where_missing

DATABASE = "postgres"  # the one that is there, in UTF-8 and compared by bytes
OWNER = "codebook_owner"  # of the tables; may do everything
READER = "codebook_reader"  # may read what it is granted, and needs no password
GUARDED = "codebook_guarded"  # may read as well, with the password below
PASSWORD = "right;{pass}'word"  # noqa: of a server that lives as long as the test
COORDINATOR = "codebook_test"
DRIVER = "PostgreSQL Unicode"
ATTEMPTS = 3  # a free port may be taken before the server has it

SETTINGS = """
listen_addresses = '127.0.0.1'
max_connections = 60
shared_buffers = 16MB
dynamic_shared_memory_type = mmap
fsync = off
synchronous_commit = off
full_page_writes = off
wal_level = minimal
max_wal_senders = 0
autovacuum = off
logging_collector = off
timezone = 'UTC'
"""

# The password of the role that needs one is asked for over TCP only.
ACCESS = f"""
host all {GUARDED} 127.0.0.1/32 scram-sha-256
host all all 127.0.0.1/32 trust
local all all trust
"""

ROLES = f"""
CREATE ROLE {READER} LOGIN;
CREATE ROLE {GUARDED} LOGIN IN ROLE {READER} PASSWORD '{PASSWORD.replace("'", "''")}';
"""

# What the owner makes, others may read.
GRANTS = f"""
ALTER DEFAULT PRIVILEGES GRANT USAGE ON SCHEMAS TO {READER};
ALTER DEFAULT PRIVILEGES GRANT SELECT ON TABLES TO {READER};
"""


def programs():
    """The folder of the newest PostgreSQL's programs."""
    folders = [path for path in glob.glob("/usr/lib/postgresql/*/bin") if os.access(os.path.join(path, "initdb"), os.X_OK)]
    if folders:
        return max(folders, key=lambda path: [int(digits) for digits in re.findall("[0-9]+", path)])
    initdb = shutil.which("initdb")
    if initdb and shutil.which("postgres") and shutil.which("psql"):
        return os.path.dirname(initdb)
    raise NotInstalled("PostgreSQL is not installed: apt-get install postgresql-15")


def require_driver():
    listed = subprocess.run(["odbcinst", "-q", "-d"], capture_output=True, text=True, check=False) if shutil.which("odbcinst") else None
    if listed is None or f"[{DRIVER}]" not in listed.stdout.splitlines():
        raise NotInstalled(f'the ODBC driver "{DRIVER}" is not installed: apt-get install unixodbc odbcinst odbc-postgresql')


def data_source(name, port):
    """The lines of a data source, for the reader."""
    return f"[{name}]\nDriver = {DRIVER}\nServername = 127.0.0.1\nPort = {port}\nDatabase = {DATABASE}\nUsername = {READER}\nSSLmode = disable\n\n"


class PostgresServer:
    """A running server. Its socket is in its own folder; statements are sent over it, as the owner unless told otherwise."""

    def __init__(self, name, folder, process, port):
        self.name = name
        self.folder = folder
        self.process = process
        self.port = port

    @property
    def socket_folder(self):
        return self.folder.inside(self.name)

    def run(self, script, *, user=OWNER, database=DATABASE):
        """Runs a script of statements and COPY blocks as psql reads it; stops at the first that fails. Returns what it printed,
        a row a line, columns apart by tabs."""
        command = [os.path.join(programs(), "psql"), "-X", "-q", "-A", "-t", "-F", "\t", "-v", "ON_ERROR_STOP=1",
                   "-h", self.socket_folder, "-p", str(self.port), "-U", user, "-d", database, "-f", "-"]
        done = subprocess.run(command, input=script.encode(), capture_output=True, check=False, cwd="/",
                              env={**os.environ, "PGCLIENTENCODING": "UTF8", "PGOPTIONS": "--client-min-messages=warning"})
        if done.returncode != 0:
            raise ServerError(f"{self.name}: {done.stderr.decode(errors='replace').strip()}")
        return done.stdout.decode()

    def connection_string(self, user=READER):
        return f"Driver={{{DRIVER}}};Servername=127.0.0.1;Port={self.port};Database={DATABASE};Username={user};SSLmode=disable"

    def is_ready(self):
        try:
            with open(os.path.join(self.socket_folder, "data", "postmaster.pid"), encoding="utf-8") as file:
                lines = file.read().splitlines()
        except OSError:
            return False
        return len(lines) > 7 and lines[7].strip() == "ready"

    def stop(self):
        self.process.stop(signal.SIGINT)

    def kill(self):
        """Ends it in the middle of what it does, as a crash would."""
        self.process.stop(signal.SIGQUIT)


class PostgresServers:
    """A context manager: `coordinator`, the server that is asked, and `workers`, those that it asks."""

    def __init__(self, workers=0, settings="", is_small=False):
        """`settings`: lines of each server's configuration, behind those that all tests have. `is_small`: all data together
        are some megabytes."""
        self.worker_count = workers
        self.settings = settings
        self.is_small = is_small
        self.coordinator = None
        self.workers = []
        self.folder = None
        self.odbc_ini = None

    def __enter__(self):
        programs()
        self.folder = ServerFolder(["postgres", "nobody"], self.is_small)
        try:
            self._start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for server in self.all():
            server.process.process.send_signal(signal.SIGINT)
        for server in self.all():
            server.stop()
        self.folder.remove()

    def all(self):
        return [server for server in [self.coordinator, *self.workers] if server]

    def environment(self):
        """The variables of the environment in which programs find the servers by the names of data sources."""
        return {"ODBCINI": self.odbc_ini}

    def _start(self):
        template = self.folder.inside("template")
        self.folder.run([os.path.join(programs(), "initdb"), "-D", template, "-U", OWNER, "-E", "UTF8", "--locale=C", "-A", "trust",
                         "--no-sync", "--no-instructions", "--wal-segsize=1"])
        names = ["coordinator"] + [f"worker{i + 1}" for i in range(self.worker_count)]
        for name in names:
            os.mkdir(self.folder.inside(name), 0o700)
        if self.folder.user:
            for name in names:
                os.chown(self.folder.inside(name), self.folder.user.pw_uid, self.folder.user.pw_gid)
        for name in names[1:]:
            self.folder.run(["cp", "-a", template, self.folder.inside(name, "data")])
        os.rename(template, self.folder.inside(names[0], "data"))
        started = [self._launch(name) for name in names]
        self.coordinator, self.workers = started[0], started[1:]
        for i, server in enumerate(started):
            server = self._wait(server)
            server.run(ROLES, database="postgres")
            server.run(GRANTS)
            started[i] = server
            self.coordinator, self.workers = started[0], started[1:]
        if self.workers:
            self.coordinator.run(self._foreign_servers())
        self._write_odbc_ini()

    def _launch(self, name):
        port = free_port()
        socket_folder = self.folder.inside(name)
        self.folder.write(os.path.join(name, "data", "postgresql.auto.conf"),
                          f"{SETTINGS}{self.settings}port = {port}\nunix_socket_directories = '{socket_folder}'\n")
        self.folder.write(os.path.join(name, "data", "pg_hba.conf"), ACCESS)
        process = ServerProcess(self.folder, name, [os.path.join(programs(), "postgres"), "-D", os.path.join(socket_folder, "data")])
        return PostgresServer(name, self.folder, process, port)

    def _wait(self, server):
        for attempt in range(ATTEMPTS):
            try:
                server.process.wait_until(server.is_ready)
                return server
            except ServerError as error:
                if "Address already in use" not in str(error) or attempt + 1 == ATTEMPTS:
                    raise
            server = self._launch(server.name)
        return server

    def _foreign_servers(self):
        script = "CREATE EXTENSION postgres_fdw;\n"
        for worker in self.workers:
            script += f"""
CREATE SERVER {worker.name} FOREIGN DATA WRAPPER postgres_fdw
  OPTIONS (host '127.0.0.1', port '{worker.port}', dbname '{DATABASE}', async_capable 'true', fetch_size '10000', batch_size '1000');
CREATE USER MAPPING FOR {OWNER} SERVER {worker.name} OPTIONS (user '{OWNER}');
CREATE USER MAPPING FOR {READER} SERVER {worker.name} OPTIONS (user '{READER}', password_required 'false');
CREATE USER MAPPING FOR {GUARDED} SERVER {worker.name} OPTIONS (user '{READER}', password_required 'false');
GRANT USAGE ON FOREIGN SERVER {worker.name} TO {OWNER};
"""
        return script

    def _write_odbc_ini(self):
        sources = [(COORDINATOR, self.coordinator)] + [(f"codebook_{worker.name}", worker) for worker in self.workers]
        self.odbc_ini = self.folder.write("odbc.ini", "".join(data_source(name, server.port) for name, server in sources))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--workers", type=int, default=0, help="servers that the first one reaches as foreign ones")
    parser.add_argument("command", nargs="+", help="what to run beside them, behind --")
    arguments = parser.parse_args()
    with skipped_where_missing():
        require_driver()
        run_beside(PostgresServers(arguments.workers), arguments.command)


if __name__ == "__main__":
    main()
