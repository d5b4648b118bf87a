"""Data packages as others published them: each gives a codebook with its dictionary. The numbers were counted from the files with
another CSV reader, the texts are those of the published schemas: Camtrap DP 1.0.2 (rs.gbif.org/sandbox/experimental/camtrap-dp),
github.com/datasets/country-codes, and the example of the R package frictionless."""

import csv
import json
import os
import shutil
import unittest

from program import PROJECT, ProgramTest

PACKAGES = os.path.join(PROJECT, "tests", "data", "packages")
VERSIONS = os.path.join(PROJECT, "tests", "unit", "data", "dictionary", "packages")
ALL = ("CODEBOOK ALL /VARINFO POSITION LABEL TYPE FORMAT MEASURE ROLE VALUELABELS MISSING ATTRIBUTES"
       " /FILEINFO LABEL CASECOUNT DOCUMENTS /STATISTICS COUNT PERCENT MEAN STDDEV QUARTILES.")


def rows_of(table):
    """The rows of a table: name of the group or row to the texts of its cells."""
    rows = {}

    def walk(items):
        for item in items:
            if "group" in item:
                walk(item["items"])
            else:
                rows.setdefault(item["category"]["text"], []).append([cell["text"] for cell in item["cells"]])

    for dimension in table["dimensions"]:
        if dimension["place"] == "rows":
            walk(dimension["items"])
    return rows


class Published(ProgramTest):
    def codebook(self, package, *more, command=ALL):
        """The tables by their titles, and what reading had to say."""
        result = self.run_program(package, "-F", "json", "-c", command, *more)
        self.assert_status(result, 0)
        report = json.loads(result.out)
        tables = {table["title"]["text"]: rows_of(table) for table in report["procedures"][0]["tables"]}
        return tables, [message["text"] for message in report["messages"] if message["source"] == "data"]


class Camtrap(Published):
    PACKAGE = os.path.join(PACKAGES, "camtrap", "datapackage.json")

    def test_schemasGivenByAddressAreReadFromTheirCopies(self):
        tables, messages = self.codebook(self.PACKAGE, "--resource", "observations")
        self.assertEqual(len(messages), 1)
        self.assertIn("https://raw.githubusercontent.com/tdwg/camtrap-dp/1.0.2/observations-table-schema.json", messages[0])
        self.assertIn("was not fetched; its local copy", messages[0])
        rows = tables["observationType"]
        self.assertEqual(rows["Measurement"], [["Nominal"]])
        self.assertIn(["366", "66.7%"], rows["animal"])
        self.assertIn(["115", "20.9%"], rows["blank"])
        self.assertEqual(rows["Description"], [["Type of the observation. All categories in this vocabulary have to be "
                                                "understandable from an AI point of view. `unknown` describes "
                                                "classifications with a `classificationProbability` below some predefined "
                                                "threshold i.e. neither humans nor AI can say what was recorded."]])
        self.assertEqual(tables["eventStart"]["Measurement"], [["Scale"]])
        self.assertEqual(tables["eventStart"]["Valid"], [["549"]])
        self.assertIn(["280", "51.0%"], tables["count"]["1"])
        self.assertEqual(tables["eventStart"]["Format"], [["YMDHMS19"]])

    def test_severalResourcesAreListed(self):
        result = self.run_program(self.PACKAGE)
        self.assert_refused(result, 3, "choose one with --resource NAME: deployments, media, observations, individuals")
        result = self.run_program(self.PACKAGE, "--resource", "birds")
        self.assert_refused(result, 3, 'there is no resource "birds"', "deployments, media, observations, individuals")

    def test_allResources(self):
        for resource, cases, variables in (("deployments", 4, 24), ("media", 423, 11), ("observations", 549, 28)):
            tables, messages = self.codebook(self.PACKAGE, "--resource", resource)
            self.assertEqual(len(messages), 1, messages)
            self.assertEqual(tables["File Information"]["Unweighted"], [[str(cases)]])
            self.assertEqual(len(tables), variables + 1)

    def test_inlineData(self):
        tables, messages = self.codebook(self.PACKAGE, "--resource", "individuals")
        self.assertEqual(messages, [])
        self.assertEqual(sorted(tables), ["File Information", "id", "individualName", "scientificName"])
        self.assertIn(["1", "100.0%"], tables["scientificName"]["Vulpes vulpes"])

    def test_withoutTheCopiesItIsSaidWhereToPutThem(self):
        shutil.copytree(os.path.dirname(self.PACKAGE), self.path("alone"), ignore=shutil.ignore_patterns("schemas"))
        result = self.run_program("alone/datapackage.json", "--resource", "media")
        self.assert_refused(result, 3, "/resources/1/schema", "media-table-schema.json", "nothing is fetched", "--schemas")
        schemas = os.path.join(os.path.dirname(self.PACKAGE), "schemas")
        tables, _ = self.codebook("alone/datapackage.json", "--resource", "media", "--schemas", schemas)
        self.assertIn(["420", "99.3%"], tables["captureMethod"]["activityDetection"])


class CountryCodes(Published):
    PACKAGE = os.path.join(PACKAGES, "country-codes", "datapackage.json")

    def test_codesWithLeadingZerosUnderTypeNumber(self):
        tables, messages = self.codebook(self.PACKAGE)
        told = [message for message in messages if "leading zeros" in message]
        self.assertEqual(len(told), 2)
        self.assertIn('column "M49": 30 cells are written with leading zeros, such as "004"', told[0])
        self.assertIn('column "ISO4217-currency_numeric_code": 19 cells are written with leading zeros, such as "008"', told[1])
        self.assertEqual(tables["M49"]["Description"], [[
            "UN Statistics M49 numeric codes (nearly synonymous with ISO 3166-1 numeric codes, which are based on UN M49. "
            "ISO 3166-1 does not include Channel Islands or Sark, for example)"]])
        self.assertEqual(tables["M49"]["Valid"], [["251"]])
        self.assertEqual(tables["ISO4217_currency_numeric_code"]["Valid"], [["234"]])
        self.assertEqual(tables["Geoname_ID"]["Label"], [["Geoname ID"]])
        self.assertEqual(tables["File Information"]["Label"], [[
            "Comprehensive country codes: ISO 3166, ITU, ISO 4217 currency codes and many more"]])

    def test_namelessResource(self):
        tables, messages = self.codebook(os.path.join(VERSIONS, "country-list", "datapackage.json"))
        self.assertEqual(messages, [])
        self.assertEqual(tables["Code"]["Description"], [["ISO 2-digit code from ISO 3166-alpha-2"]])


class TwoVersions(Published):
    """One package in version 1 and in version 2 form."""

    def both(self, resource):
        reports = []
        for version in ("v1", "v2"):
            tables, messages = self.codebook(os.path.join(VERSIONS, version, "datapackage.json"), "--resource", resource)
            reports.append((tables, [message.partition(": ")[2] for message in messages]))
        return reports

    def test_sameReport(self):
        for resource in ("deployments", "media"):
            one, two = self.both(resource)
            self.assertEqual(one, two)
            self.assertGreater(len(one[0]), 5)

    def test_observationsDifferInTheLabelsThatVersionTwoAdds(self):
        one, two = self.both("observations")
        self.assertEqual(list(one[0]), list(two[0]))
        for name, rows in one[0].items():
            for row in ("Measurement", "Type", "Valid", "Role"):  # labels of three bytes make the format wider
                self.assertEqual(rows.get(row), two[0][name].get(row), (name, row))
        self.assertEqual(one[0]["life_stage"]["Measurement"], [["Nominal"]])
        self.assertEqual(one[0]["count"], two[0]["count"])


class Parsing(Published):
    """Little files, each for a property of the standard."""

    def write_package(self, resource):
        for name in os.listdir(os.path.join(PACKAGES, "parsing")):
            if not os.path.exists(self.path(name)):
                shutil.copy(os.path.join(PACKAGES, "parsing", name), self.path(name))
        self.write("datapackage.json", json.dumps({"resources": [resource]}))

    def values(self, resource, command="CODEBOOK ALL /VARINFO LABEL /STATISTICS COUNT."):
        self.write_package(resource)
        return self.codebook("datapackage.json", command=command)[0]

    def test_dialectOfEverything(self):
        schema = "deployments_schema.json"
        dialect = {"delimiter": "/", "quoteChar": "'", "escapeChar": "\\", "commentChar": "#", "header": False,
                   "skipInitialSpace": True}
        shutil.copy(os.path.join(VERSIONS, "v1", "deployments.csv"), self.path("plain.csv"))
        plain = self.values({"name": "r", "path": "plain.csv", "schema": schema}, ALL)
        self.assertEqual(plain["start"]["Format"], [["SDATE10"]])
        odd = self.values({"name": "r", "path": "deployments_dialect.csv", "schema": schema, "dialect": dialect}, ALL)
        self.assertEqual(odd, plain)

    def test_encoding(self):
        schema = "deployments_schema.json"
        tables = self.values({"name": "r", "path": "deployments_encoding.csv", "schema": schema, "encoding": "windows-1252"})
        self.assertIn(["1"], tables["comments"]['On "forêt" road.'])

    def test_missingValues(self):
        schema = json.loads(self.original("deployments_schema.json"))
        schema["missingValues"] = ["", "ignore"]
        tables = self.values({"name": "r", "path": "deployments_missingvalues.csv", "schema": schema},
                             "CODEBOOK comments /VARINFO VALUELABELS /STATISTICS COUNT.")
        self.assertIn(["1"], tables["comments"]["ignore"])

    def original(self, name):
        with open(os.path.join(PACKAGES, "parsing", name), encoding="utf-8") as file:
            return file.read()

    def test_everyTypeOfTheStandard(self):
        package = os.path.join(PACKAGES, "parsing", "types.json")
        means = "CODEBOOK ALL [S] /VARINFO FORMAT TYPE /STATISTICS MEAN."
        tables, messages = self.codebook(package, "--resource", "number", command=means)
        self.assertEqual(tables["num"]["Mean"], [["3.000"]])
        self.assertEqual(tables["num_notbare"]["Mean"], [["3.100"]])
        self.assertEqual(tables["num_ws"]["Mean"], [["3.100"]])
        self.assertEqual([message for message in messages if "leading zeros" not in message], [])
        tables, _ = self.codebook(package, "--resource", "integer", command=means)
        self.assertEqual(tables["int_notbare"]["Mean"], [["3.00"]])
        tables, _ = self.codebook(package, "--resource", "date", command="CODEBOOK ALL /VARINFO FORMAT /STATISTICS MEAN.")
        for name, rows in tables.items():
            self.assertEqual(rows["Mean"], [["2013/11/23"]], name)
        tables, _ = self.codebook(package, "--resource", "time", command="CODEBOOK ALL /VARINFO FORMAT /STATISTICS MEAN.")
        for name, rows in tables.items():
            self.assertIn("8:30:00", rows["Mean"][0][0], name)
        tables, messages = self.codebook(package, "--resource", "other", command=means)
        self.assertEqual([tables[name]["Type"] for name in ("year", "yearmonth", "duration")], [[["Numeric"]]] * 3)
        for name in ("object", "array", "geopoint", "geojson", "any"):
            self.assertEqual(tables[name]["Type"], [["String"]], name)
        self.assertEqual(len(messages), 1)
        self.assertIn('field "no_type" has no "type"', messages[0])
        tables, _ = self.codebook(package, "--resource", "boolean", command="CODEBOOK ALL /VARINFO VALUELABELS /STATISTICS COUNT.")
        self.assertIn("4", [cells[-1] for cells in tables["bool_true"]["1"]])
        self.assertIn("4", [cells[-1] for cells in tables["bool_false"]["0"]])

    def test_decimalAndGroupingMarks(self):
        package = os.path.join(PACKAGES, "parsing", "mark.json")
        for resource in ("mark_default", "mark_decimal", "mark_decimal_group"):
            tables, _ = self.codebook(package, "--resource", resource, command="CODEBOOK num [S] /VARINFO FORMAT /STATISTICS MEAN.")
            self.assertEqual(tables["num"]["Mean"], [["3000000.3000"]], resource)


class Damaged(Published):
    def refused(self, descriptor, *words):
        self.write("datapackage.json", descriptor)
        self.write("data.csv", "a\n1\n")
        self.assert_refused(self.run_program("datapackage.json"), 3, "datapackage.json", *words)

    def test_cutOff(self):
        whole = json.dumps({"resources": [{"name": "r", "path": "data.csv", "schema": {"fields": [{"name": "a"}]}}]}, indent=1)
        for length in range(1, len(whole) - 2, 7):
            self.refused(whole[:length], "datapackage.json:", "no JSON")

    def test_nulCharacter(self):
        self.refused('{"resources": []}\0', "datapackage.json:1:18: a NUL character")

    def test_utf16(self):
        self.refused('{"resources": []}'.encode("utf-16"), "UTF-16", "save it in UTF-8")

    def test_largerThanAnyDictionary(self):
        with open(self.path("datapackage.json"), "wb") as file:
            file.write(b'{"resources": [')
            file.truncate(1 << 30)
        self.assert_refused(self.run_program("datapackage.json"), 3, "datapackage.json", "larger than 128 MiB")

    def test_nothingIsReadOutsideOfThePackage(self):
        self.write("secret.json", '{"fields": [{"name": "secret"}]}')
        for reference in ("../secret.json", "/etc/passwd"):
            for member in ("schema", "dialect"):
                self.write("p/datapackage.json", json.dumps({"resources": [{"name": "r", "path": "data.csv", member: reference}]}))
                self.write("p/data.csv", "a\n1\n")
                result = self.run_program("p/datapackage.json")
                self.assert_refused(result, 3, f"/resources/0/{member}", "refused")


if __name__ == "__main__":
    unittest.main()
