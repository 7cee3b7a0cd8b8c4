#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes the generated scripts of database/ from a folder of published reference data (CSV files).

    tools/make_database_scripts.py DATA_FOLDER [OUTPUT_FOLDER]

The same input always gives the same scripts.
"""
import csv
import re
import sys
import textwrap
from collections import defaultdict
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LARGE_INSTITUTIONS = ["ANZ", "BQL", "BSA", "BWA", "CBA", "CUS", "HBA", "MBL", "MET", "NAB", "SGP", "STG", "WBC"]
BRANCHES_PER_STATE = 4
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
            head = textwrap.fill(f"INSERT INTO dbo.{table} ({', '.join(columns)}) VALUES", 120, subsequent_indent="    ",
                                 break_long_words=False)
            self.parts.append(f"{head}\n{lines}\nGO\n")

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


NO_LIMIT = "9999999"


def tax_key(year, position, per_year):
    """Keys of supplied records: below 50001 and the same whichever other years are supplied."""
    return str((int(year) - 2000) * per_year + position)


def by_year(rows, *key):
    """Rows grouped by tax year, then by the named columns, in the order of the file."""
    years = defaultdict(lambda: defaultdict(list))
    for row in rows:
        years[row["tax_year_end"]][tuple(row[k] for k in key)].append(row)
    return years


def tax_scales():
    script = Script("220_reference_tax_scales.sql", "Withholding scales of the tax office with their brackets, and Medicare scales.")
    codes = list(dict.fromkeys(s["scale"] for s in read("tax_scales.csv")))
    script.rows("_iptblTaxOfficeScaleCodes", ["idTaxOfficeScaleCode", "iCountry", "cCode"],
                [[str(i), "5", text(code)] for i, code in enumerate(codes, 1)])

    medicare_names = {"2": "Medicare levy, tax-free threshold claimed", "6": "Medicare levy, half exemption"}
    medicare, medicare_keys = [], {}
    for year, scales in by_year(read("medicare_scales.csv"), "scale").items():
        for position, ((scale,), (row,)) in enumerate(scales.items(), 1):
            medicare_keys[year, scale] = tax_key(year, position, 100)
            # The factor is the exact annual threshold / 52, an amount to take off; the published threshold is whole dollars.
            medicare.append([medicare_keys[year, scale], text(scale), text(medicare_names[scale]), year,
                             *(number(row[c]) for c in (
                                 "eligible_from_weekly", "shade_in_threshold", "family_threshold_annual", "wft_divisor",
                                 "additional_child", "sop_multiplier", "sop_divisor", "weekly_earnings_threshold",
                                 "medicare_levy"))])
    script.rows("_iptblMedicareScales",
                ["idMedicareScales", "cCode", "cMedicareScaleDescription", "iTaxYear", "fWeeklyEarningsThreshold",
                 "fWeeklyEarningsShadeInThreshold", "fFamilyThreshold", "fWFTDivisor", "fAdditionalChildAllowance",
                 "fSOPMultiplier", "fSOPDivisor", "fWLAFactor", "fAdjustmentLevy"], medicare)

    # Tax offsets are claimed on the scales of people who claim the tax-free threshold.
    with_offsets = {"2", "5", "6"}
    scales, scale_keys = [], {}
    for year, rows in by_year(read("tax_scales.csv"), "scale").items():
        for position, ((code,), (row,)) in enumerate(rows.items(), 1):
            scale_keys[year, code] = tax_key(year, position, 100)
            link = medicare_keys.get((year, code), "0")
            scales.append([scale_keys[year, code], text(code), text(row["description"]), "0",
                           "1" if code in with_offsets else "0", "0", "5", year, link, text(code if link != "0" else "")])
    script.rows("_iptblTaxScales",
                ["idTaxScales", "cCode", "cDescription", "bUserDefinable", "bRatesApplicable", "bIncludeLeaveLoading",
                 "iCountry", "iTaxYear", "iMedicareScalesID", "cMedicareScaleCode"], scales)

    brackets = []
    for year, rows in by_year(read("tax_brackets.csv")).items():
        for position, row in enumerate(rows[()], 1):
            brackets.append([tax_key(year, position, 1000), scale_keys[year, row["scale"]], text(row["scale"]), year,
                             number(row["weekly_less_than"]), number(row["a"]), number(row["b"]), "0"])
    script.rows("_iptblTaxBrackets",
                ["idTaxBrackets", "iTaxScalesID", "cTaxScaleCode", "iBracketTaxYear", "TaxBracket", "TaxPercentage",
                 "TaxAmount", "CoefficientC"], brackets)
    script.write()


TABLE_NAMES = {"TFT": "Tax-free threshold claimed or foreign resident", "NTFT": "Tax-free threshold not claimed"}


def day(iso):
    """2025-09-23 as "23 September 2025"."""
    months = ["January", "February", "March", "April", "May", "June", "July", "August", "September", "October", "November",
              "December"]
    year, month, date = iso.split("-")
    return f"{int(date)} {months[int(month) - 1]} {year}"


def loan_scales():
    script = Script("230_reference_loan_scales.sql", "Study and training loan scales, and those of the former financial supplement.")
    scales, brackets = [], []
    for year, tables in by_year(read("stsl_brackets.csv"), "table", "effective_from", "effective_to").items():
        ends = {name: max(end for n, _, end in tables if n == name) for name, _, _ in tables}
        starts = {name: min(start for n, start, _ in tables if n == name) for name, _, _ in tables}
        bracket = 0
        for position, ((name, start, end), rows) in enumerate(tables.items(), 1):
            key = tax_key(year, position, 100)
            code, description = name, TABLE_NAMES[name]
            if end != ends[name]:    # superseded within the year: the code says when it ended
                date, month, _ = day(end).split()
                code += f"-{date}{month[:3].upper()}"
            if (start, end) != (starts[name], ends[name]):
                description += f" ({day(start)} to {day(end)})"
            scales.append([key, text(code), text(description), year])
            for row in rows:
                bracket += 1
                brackets.append([tax_key(year, bracket, 1000), key, year, number(row["weekly_less_than"]), number(row["a"]),
                                 number(row["b"])])
    script.rows("_iptblHECSScales", ["idHECSScales", "cCode", "cDescription", "iTaxYear"], scales)
    script.rows("_iptblHECSBrackets",
                ["idHECSBrackets", "iHECSScalesID", "iTaxYear", "fWeeklyEarnings", "CoefficientA", "CoefficientB"], brackets)

    scales, brackets = [], []
    for year, tables in by_year(read("sfss_brackets.csv"), "table").items():
        bracket = 0
        for position, ((name,), rows) in enumerate(tables.items(), 1):
            key = tax_key(year, position, 100)
            scales.append([key, text(name), text(TABLE_NAMES[name]), year])
            for row in rows:
                bracket += 1
                brackets.append([tax_key(year, bracket, 1000), key, year, number(row["weekly_less_than"]), number(row["rate"])])
    script.rows("_iptblSFSSScales", ["idSFSSScales", "cCode", "cDescription", "iTaxYear"], scales)
    script.rows("_iptblSFSSBrackets", ["idSFSSBrackets", "iSFSSScalesID", "iTaxYear", "fWeeklyEarnings", "CoefficientA"],
                brackets)
    script.write()


# Columns of the Australian parameters and the published figures that fill them; a figure not published stays 0.
AU_PARAMETERS = [
    ("TerminationTaxRate", "etp_rate_under_preservation_age"),
    ("TermNoTFNResidentRate", "no_tfn_rate_resident"),
    ("TermNoTFNNonResRate", "no_tfn_rate_foreign"),
    ("TermAssAmtPercent", "lump_sum_b_taxable_percent"),
    ("TermSpecRateMedLevy", "medicare_levy_rate"),
    ("ReducedTaxRate", "etp_rate_preservation_age"),
    ("TermAboveCapRate", "etp_rate_over_cap"),
    ("TaxReductionAmount", "etp_cap"),
    ("TaxReductionAmount", "etp_lower_cap_transitional"),
    ("TermETPUpperCap", "etp_upper_cap_transitional"),
    ("TermWholeOfIncomeCap", "whole_of_income_cap"),
    ("TermETPInitTaxFree", "genuine_redundancy_base"),
    ("TermETPAnnualTaxFree", "genuine_redundancy_per_year"),
]
NZ_PARAMETERS = [
    ("fPayrollGivingCredit", "payroll_giving_credit_rate"),
    ("fLoanRate", "student_loan_rate"),
    ("fAnnualLoanThreshold", "student_loan_threshold_annual"),
    ("fLevyRate", "acc_earners_levy_rate"),
    ("fAnnualLevyThreshold", "acc_maximum_earnings"),
]


def tax_parameters():
    script = Script("240_reference_tax_parameters.sql", "Tax parameters of Australia, New Zealand and the third country.")
    columns = list(dict.fromkeys(column for column, _ in AU_PARAMETERS))
    rows = []
    for year, parameters in by_year(read("tax_parameters_au.csv"), "parameter").items():
        values = {}
        for column, parameter in AU_PARAMETERS:
            for row in parameters.get((parameter,), []):
                values[column] = number(row["value"])
        rows.append([year, "5", *(values.get(column, "0") for column in columns)])
    script.rows("_iptblSGLTaxParameters", ["iTaxYear", "iCountry", *columns], rows)

    rows, lump_sums, options = [], [], []
    for year, parameters in by_year(read("tax_parameters_nz.csv"), "parameter").items():
        values = {column: number(parameters[parameter,][0]["value"])
                  for column, parameter in NZ_PARAMETERS if (parameter,) in parameters}
        if len(values) < len(NZ_PARAMETERS):    # regulated in advance in part only
            continue
        rows.append([year, "6", *(values[column] for column, _ in NZ_PARAMETERS)])
        # Income is taken in whole dollars, tax to the cent.
        options.append([year, "6", "1", "0.01"])
        lump_sums += [[year, "6", number(row["income_up_to"]) or NO_LIMIT, number(row["value"])]
                      for row in parameters["extra_pay_rate",]]
    options += [[row[0], "7", "1", "0.01"] for row in rows]
    script.rows("_iptblTaxParametersNZ", ["iTaxYear", "iCountry", *(column for column, _ in NZ_PARAMETERS)], rows)
    script.rows("_iptblTaxOptions", ["iTaxYear", "iCountry", "fRoundTaxableGrossTo", "fRoundTaxTo"], options)
    script.rows("_iptblLumpSumTaxRates", ["iTaxYear", "iCountry", "fLumpSum", "fTaxRate"], lump_sums)
    script.write()


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    DATA = Path(sys.argv[1])
    OUTPUT = Path(sys.argv[2]) if len(sys.argv) == 3 else ROOT / "database"
    places()
    institutions()
    demo_banks()
    tax_scales()
    loan_scales()
    tax_parameters()
