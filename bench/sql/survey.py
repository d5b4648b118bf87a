"""The table of the benchmark: a survey of 20 columns that the servers make for themselves.

Every cell is a function of its row's number, so that any server can make any stretch of the rows, and all make the same:
hashes of the number and the column's place stand for random numbers."""

TABLE = "survey"

COLUMNS = """
  id bigint NOT NULL,
  sex smallint,
  age_group smallint,
  education smallint,
  marital smallint,
  employment smallint,
  party smallint,
  satisfaction smallint,
  occupation smallint,
  region text,
  town text,
  remark text,
  interviewed date,
  born date,
  children smallint,
  visits integer,
  income integer,
  amount numeric(12,2),
  measure double precision,
  weight double precision
"""
COLUMN_COUNT = 20

# even(row, place): between 0 and 1, both excluded. code(row, place, n): 1 ... n, the lower ones more often.
# normal(row, place): standard normal.
FUNCTIONS = """
CREATE FUNCTION even(bigint, int) RETURNS float8 LANGUAGE sql IMMUTABLE PARALLEL SAFE AS
  $$ SELECT ((hashint8extended($1, $2) & 4503599627370495) + 0.5::float8) / 4503599627370496::float8 $$;
CREATE FUNCTION code(bigint, int, int) RETURNS int LANGUAGE sql IMMUTABLE PARALLEL SAFE AS
  $$ SELECT 1 + floor($3 * power(even($1, $2), 1.5))::int $$;
CREATE FUNCTION normal(bigint, int) RETURNS float8 LANGUAGE sql IMMUTABLE PARALLEL SAFE AS
  $$ SELECT sqrt(-2 * ln(even($1, $2))) * cos(2 * pi() * even($1, $2 + 100)) $$;
"""

REGIONS = 16
TOWNS = 2000
WORDS = ("good bad late early slow quick friendly rude clean dirty waiting staff doctor nurse price queue parking letter answer call "
         "form office hours bus train road school garden noise light heating rent water paper online counter ticket visit help "
         "nothing").split()

# NULL stands for no answer, -9 for a refusal. The weight is one number for each class of sex, age group, education and region,
# as adjusting a sample to known totals gives them: full doubles, a few thousand different ones.
ROWS = f"""
SELECT
  g,
  code(g, 1, 2),
  code(g, 2, 7),
  CASE WHEN even(g, 31) < 0.05 THEN NULL WHEN even(g, 31) < 0.08 THEN -9 ELSE code(g, 3, 8) END,
  CASE WHEN even(g, 32) < 0.02 THEN NULL ELSE code(g, 4, 5) END,
  code(g, 5, 12),
  CASE WHEN even(g, 33) < 0.12 THEN -9 ELSE code(g, 6, 15) END,
  CASE WHEN even(g, 34) < 0.03 THEN NULL ELSE 11 - code(g, 7, 11) END,
  CASE WHEN even(g, 35) < 0.3 THEN NULL ELSE code(g, 8, 50) END,
  'Region ' || code(g, 9, {REGIONS}),
  initcap(translate(to_hex(100000 + 7919 * code(g, 10, {TOWNS})), '0123456789', 'ghijklmnop')),
  CASE WHEN even(g, 36) < 0.6 THEN NULL ELSE concat_ws(' ', words[code(g, 11, 40)], words[code(g, 12, 40)], words[code(g, 13, 40)],
    words[code(g, 14, 40)]) END,
  DATE '2024-03-01' + code(g, 15, 120),
  DATE '2006-01-01' - floor(25000 * even(g, 16))::int,
  floor(-1.2 * ln(even(g, 17)))::int,
  floor(-9 * ln(even(g, 18)))::int,
  CASE WHEN even(g, 37) < 0.1 THEN NULL ELSE round(exp(10.2 + 0.7 * normal(g, 19))) END,
  round((exp(4 + 1.1 * normal(g, 20)))::numeric, 2),
  50 + 10 * normal(g, 21),
  0.3 + 2.4 * even(code(g, 1, 2) * 10000 + code(g, 2, 7) * 1000 + code(g, 3, 8) * 100 + code(g, 9, {REGIONS}), 22)
FROM generate_series(%(first)d::bigint, %(last)d::bigint) g, (SELECT string_to_array('{" ".join(WORDS)}', ' ') AS words) w
"""


def stretches(rows, parts):
    """The first and last row numbers of so many parts of about equal length."""
    edges = [rows * i // parts for i in range(parts + 1)]
    return [(edges[i] + 1, edges[i + 1]) for i in range(parts)]


def filling(relation, first, last):
    """A script that makes the table and fills it with these rows."""
    return (f"BEGIN;\n{FUNCTIONS}\nCREATE TABLE {relation} ({COLUMNS});\nINSERT INTO {relation} {ROWS % {'first': first, 'last': last}};\nCOMMIT;\n"
            f"VACUUM (ANALYZE, FREEZE) {relation};\n")


def partitioned(relation, workers, worker_relation, rows):
    """A script that makes a table whose parts are the workers' tables."""
    script = f"CREATE TABLE {relation} ({COLUMNS}) PARTITION BY RANGE (id);\n"
    schema, _, name = worker_relation.rpartition(".")
    for worker, (first, last) in zip(workers, stretches(rows, len(workers))):
        script += f"CREATE FOREIGN TABLE {relation}_{worker} PARTITION OF {relation} FOR VALUES FROM ({first}) TO ({last + 1}) " \
                  f"SERVER {worker} OPTIONS (schema_name '{schema}', table_name '{name}');\n"
    return script + f"ANALYZE {relation};\n"
