#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes the generated scripts of database/ from a folder of published reference data (CSV files).

    tools/make_database_scripts.py DATA_FOLDER [OUTPUT_FOLDER]

The same input always gives the same scripts.
"""
import csv
import re
import sys
from collections import defaultdict
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LARGE_INSTITUTIONS = ["ANZ", "BQL", "BSA", "BWA", "CBA", "CUS", "HBA", "MBL", "MET", "NAB", "SGP", "STG", "WBC"]
BRANCHES_PER_STATE = 3
BANK_NAME_LIMIT = 50


def read(name):
    with open(DATA / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


def text(value):
    """A T-SQL literal; N only where the text needs it."""
    literal = "'" + value.replace("'", "''") + "'"
    return literal if value.isascii() else "N" + literal


def number(value):
    """A figure as it was published, without a needless fraction."""
    value = value.strip()
    return re.sub(r"\.?0+$", "", value) if "." in value else value


class Script:
    def __init__(self, name, purpose):
        self.name = name
        self.parts = [f"-- {purpose}\n-- Made by tools/make_database_scripts.py: change that, not this.\n"]

    def rows(self, table, columns, rows, group=100):
        """INSERTs of at most `group` rows each (a server takes no more than 1000 in one)."""
        for start in range(0, len(rows), group):
            lines = ",\n".join("    (" + ", ".join(row) + ")" for row in rows[start:start + group])
            self.parts.append(f"INSERT INTO dbo.{table} ({', '.join(columns)}) VALUES\n{lines}\nGO\n")

    def write(self):
        (OUTPUT / self.name).write_text("\n".join(self.parts), encoding="utf-8", newline="\n")


def places():
    script = Script("205_reference_places.sql", "Countries (ISO 3166-1, keyed by their numeric code) and states.")
    countries = read("countries.csv")
    numeric = {c["alpha2"]: str(int(c["numeric"])) for c in countries}
    script.rows("_iptblCountries", ["idCountry", "cCountryCode", "cCountryCode3", "cCountryName"],
                [[numeric[c["alpha2"]], text(c["alpha2"]), text(c["alpha3"]), text(c["name"])] for c in countries])
    script.rows("_iptblStates", ["idState", "cStateCode", "cStateDescription", "iCountryID"],
                [[str(i), text(s["code"]), text(s["description"]), numeric[s["country"]]]
                 for i, s in enumerate(read("states.csv"), 1)])
    script.write()


def institutions():
    script = Script("210_reference_bank_institutions.sql", "The institutions of the BSB directory.")
    script.rows("_iptblBankInstitutions",
                ["idBankInstitution", "cInstitutionCode", "cInstitutionName", "cBSBPrefixes"],
                [[str(i), text(c["bank_code"]), text(c["bank_name"]), text(c["bsb_prefixes"])]
                 for i, c in enumerate(read("bank_codes.csv"), 1)])
    script.write()


def bank_name(name):
    """As the directory import does: a name too long for its column loses what follows its first " (" or ", "."""
    return name if len(name) <= BANK_NAME_LIMIT else re.split(r" \(|, ", name)[0].strip()


def bank_code(institution, bsb):
    """As the directory import does: the institution's letters, then the digits of the BSB."""
    return re.sub(r"[^A-Za-z0-9]", "", institution).upper() + re.sub(r"\D", "", bsb)


def spread(items, count):
    """`count` items evenly spaced over a list."""
    if len(items) <= count:
        return items
    return [items[i * len(items) // count] for i in range(count)]


def demo_banks():
    groups = defaultdict(list)   # institution -> open branches
    for branch in read("banks.csv"):
        if branch["status"] == "open":
            groups[branch["bank_code"]].append(branch)
    chosen = {}
    for institution, branches in groups.items():
        branches.sort(key=lambda b: b["bsb"])
        chosen[branches[0]["bsb"]] = branches[0]
        if institution not in LARGE_INSTITUTIONS:
            continue
        states = defaultdict(list)
        for branch in branches:
            if branch["branch_name"].startswith(branch["suburb"]):   # a branch that the public knows
                states[branch["state"]].append(branch)
        for state in states.values():
            for branch in spread(state, BRANCHES_PER_STATE):
                chosen[branch["bsb"]] = branch
    script = Script("demo_banks.sql",
                    "Demonstration data: real branches of every institution, over all states for the large ones.")
    states = {s["code"]: str(i) for i, s in enumerate(read("states.csv"), 1)}
    script.rows("_iptblBanks", ["cCode", "cBankName", "cBranchName", "cBSBNumber", "iStateID"],
                [[text(bank_code(b["bank_code"], b["bsb"])), text(bank_name(b["bank_name"])), text(b["branch_name"]),
                  text(b["bsb"]), states[b["state"]]] for _, b in sorted(chosen.items())])
    script.write()


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    DATA = Path(sys.argv[1])
    OUTPUT = Path(sys.argv[2]) if len(sys.argv) == 3 else ROOT / "database"
    places()
    institutions()
    demo_banks()
