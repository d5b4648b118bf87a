"""The published datasets whose reports are kept: where data and dictionary lie, and what the program is asked."""

import os

PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
HERE = os.path.dirname(os.path.abspath(__file__))

# No LOCATION: the report must not depend on where the project lies.
FILE_INFORMATION = "/FILEINFO NAME LABEL DOCUMENTS WEIGHT CASECOUNT ATTRIBUTES."


class Dataset:
    """`arguments` are the program's; `files` the data files and `dictionary` the document that the recount reads.

    All paths are relative to the project's folder, in which the program runs."""

    def __init__(self, name, arguments, files, dictionary, *, resource=None, separator=",", sets=False,
                 encoding="utf-8", header_rows=1):
        self.name = name
        self.arguments = arguments
        self.files = files
        self.dictionary = dictionary  # a Table Schema, a Data Package (with `resource`) or a DDI-Codebook
        self.resource = resource
        self.separator = separator
        self.encoding = encoding
        self.header_rows = header_rows  # where there are several, the names are the dictionary's, by position
        self.command = f"CODEBOOK ALL {'$ALL ' if sets else ''}{FILE_INFORMATION}"

    def golden(self):
        return os.path.join(HERE, self.name + ".report")


CAMTRAP = "tests/data/packages/camtrap"
COUNTRIES = "tests/data/packages/country-codes"
PAIR = "tests/data/packages/v1-v2/v2"
BUDGET = "tests/data/published/household-budget/microdata_HBS_household_raw.csv"
BUDGET_DDI = "tests/data/ddi/household-budget/HBS_2023_synth_ground-truth.xml"
STAR_WARS = "tests/data/published/star-wars-survey"
OPEN_SOURCE = "tests/data/published/open-source-survey/clean_negative_incidents"
TINY = "tests/data/ddi/tiny/101"

DATASETS = [
    Dataset("nonvoters", ["examples/nonvoters/nonvoters_data.csv"], ["examples/nonvoters/nonvoters_data.csv"],
            "examples/nonvoters/nonvoters_data.schema.json", sets=True),
    Dataset("camtrap-deployments", [f"{CAMTRAP}/datapackage.json", "--resource", "deployments"], [f"{CAMTRAP}/deployments.csv"],
            f"{CAMTRAP}/datapackage.json", resource="deployments"),
    Dataset("camtrap-observations", [f"{CAMTRAP}/datapackage.json", "--resource", "observations"], [f"{CAMTRAP}/observations.csv"],
            f"{CAMTRAP}/datapackage.json", resource="observations"),
    Dataset("two-files", [f"{PAIR}/datapackage.json", "--resource", "observations"],
            [f"{PAIR}/observations_1.tsv", f"{PAIR}/observations_2.tsv"], f"{PAIR}/datapackage.json", resource="observations",
            separator="\t"),
    Dataset("country-codes", [f"{COUNTRIES}/datapackage.json"], [f"{COUNTRIES}/data/country-codes.csv"],
            f"{COUNTRIES}/datapackage.json", resource="country-codes"),
    Dataset("household-budget", [BUDGET, "-d", BUDGET_DDI], [BUDGET], BUDGET_DDI, separator=";"),
    Dataset("star-wars", [f"{STAR_WARS}/datapackage.json"], [f"{STAR_WARS}/StarWars.csv"], f"{STAR_WARS}/datapackage.json",
            resource="survey", sets=True, encoding="windows-1252", header_rows=2),
    Dataset("open-source-survey", [f"{OPEN_SOURCE}.csv.gz"], [f"{OPEN_SOURCE}.csv.gz"], f"{OPEN_SOURCE}.schema.json", sets=True),
    Dataset("tiny-survey", [f"{TINY}.csv", "-d", f"{TINY}.xml"], [f"{TINY}.csv"], f"{TINY}.xml"),
]
