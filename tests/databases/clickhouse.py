#!/usr/bin/env python3
"""Starts a ClickHouse server for tests, and a command beside it; asks it over plain HTTP.

It has its own configuration and data below a temporary folder, listens on 127.0.0.1 on free ports, and is stopped by its
process id. CLICKHOUSE_URL in the command's environment is where it answers.

    tests/databases/clickhouse.py -- sh -c 'curl -s "$CLICKHOUSE_URL" --data-binary "SELECT version()"'

Exit status: the command's; 77 where ClickHouse is not installed."""

import argparse
import os
import shutil
import urllib.error
import urllib.request

from serverprocess import NotInstalled, ServerError, ServerFolder, ServerProcess, free_port, run_beside, skipped_where_missing

SECONDS_A_QUERY = 60

# The older name of the outermost element is the one that every version knows.
CONFIGURATION = """<?xml version="1.0"?>
<yandex>
  <logger><level>warning</level><console>1</console></logger>
  <listen_host>127.0.0.1</listen_host>
  <http_port>{http}</http_port>
  <tcp_port>{tcp}</tcp_port>
  <path>{folder}/data/</path>
  <tmp_path>{folder}/temporary/</tmp_path>
  <user_files_path>{folder}/files/</user_files_path>
  <format_schema_path>{folder}/schemas/</format_schema_path>
  <users_config>users.xml</users_config>
  <default_profile>default</default_profile>
  <default_database>default</default_database>
  <timezone>UTC</timezone>
  <mark_cache_size>67108864</mark_cache_size>
</yandex>
"""

USERS = """<?xml version="1.0"?>
<yandex>
  <profiles>
    <default><max_memory_usage>2000000000</max_memory_usage></default>
    <reading><readonly>1</readonly></reading>
  </profiles>
  <users>
    <default>
      <password></password><networks><ip>127.0.0.1</ip></networks><profile>default</profile><quota>default</quota>
    </default>
    <reader>
      <password></password><networks><ip>127.0.0.1</ip></networks><profile>reading</profile><quota>default</quota>
    </reader>
  </users>
  <quotas>
    <default>
      <interval>
        <duration>3600</duration>
        <queries>0</queries><errors>0</errors><result_rows>0</result_rows><read_rows>0</read_rows><execution_time>0</execution_time>
      </interval>
    </default>
  </quotas>
</yandex>
"""


def program():
    for name, further in (("clickhouse-server", []), ("clickhouse", ["server"])):
        found = shutil.which(name, path=os.environ.get("PATH", "") + ":/usr/sbin")
        if found:
            return [found, *further]
    raise NotInstalled("ClickHouse is not installed: apt-get install clickhouse-server")


class ClickHouseServer:
    """A context manager. `url` is where it answers."""

    def __init__(self):
        self.folder = None
        self.process = None
        self.url = None

    def __enter__(self):
        command = program()
        self.folder = ServerFolder(["clickhouse", "nobody"], is_small=True)
        try:
            http, tcp = free_port(), free_port()
            self.url = f"http://127.0.0.1:{http}/"
            configuration = self.folder.write("config.xml", CONFIGURATION.format(http=http, tcp=tcp, folder=self.folder.path))
            self.folder.write("users.xml", USERS)
            self.process = ServerProcess(self.folder, "clickhouse", [*command, f"--config-file={configuration}"])
            self.process.wait_until(self.is_ready)
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        if self.process:
            self.process.stop()
        self.folder.remove()

    def is_ready(self):
        try:
            return self.ask("SELECT 1") == "1\n"
        except OSError:
            return False

    def ask(self, statement, user="default"):
        """What the server answers, as text: rows a line each, columns apart by tabs. Rows to be inserted stand behind the
        statement, as the format that it names has them; then both are bytes."""
        data = statement if isinstance(statement, bytes) else statement.encode()
        request = urllib.request.Request(f"{self.url}?user={user}", data=data)
        try:
            with urllib.request.urlopen(request, timeout=SECONDS_A_QUERY) as answer:
                return answer.read().decode()
        except urllib.error.HTTPError as error:
            raise ServerError(f"clickhouse: {error.read().decode(errors='replace').strip()}") from None

    def environment(self):
        return {"CLICKHOUSE_URL": self.url}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("command", nargs="+", help="what to run beside it, behind --")
    arguments = parser.parse_args()
    with skipped_where_missing():
        run_beside(ClickHouseServer(), arguments.command)


if __name__ == "__main__":
    main()
