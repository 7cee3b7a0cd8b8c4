// SPDX-License-Identifier: Apache-2.0
#include "tax/TaxYearCopy.h"

#include <QHash>
#include <QSet>

#include <algorithm>

#include "framework/Kvglobal.h"
#include "framework/Kvutils.h"
#include "framework/data/CorvexADOQuery.h"

namespace {

constexpr int kSuppliedKeys = 50000;
constexpr int kEveryCountry = 0;

// A table of scales, and the table of their brackets where they have any.
struct TScaleTable
{
    const char *kind;
    const char *table;
    const char *key;
    const char *description; // column
    bool byCountry;
    const char *columns; // copied as they are, besides the code and the description
    const char *bracketTable;
    const char *bracketKey;
    const char *bracketOwner; // column
    const char *bracketYear;  // column
    const char *bracketColumns;
    int bracketKeysBelow; // the first key that a user's bracket gets is the one after this
};

constexpr TScaleTable kMedicare{
    "Medicare Scale",
    "_iptblMedicareScales",
    "idMedicareScales",
    "cMedicareScaleDescription",
    false,
    "fWeeklyEarningsThreshold, fWeeklyEarningsShadeInThreshold, fFamilyThreshold, fWFTDivisor, "
    "fAdditionalChildAllowance, fSOPMultiplier, fSOPDivisor, fWLAFactor, fAdjustmentLevy",
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    0};

constexpr TScaleTable kTax{"Tax Scale",
                           "_iptblTaxScales",
                           "idTaxScales",
                           "cDescription",
                           true,
                           "bRatesApplicable, bIncludeLeaveLoading, iCountry, cMedicareScaleCode",
                           "_iptblTaxBrackets",
                           "idTaxBrackets",
                           "iTaxScalesID",
                           "iBracketTaxYear",
                           "cTaxScaleCode, TaxBracket, TaxPercentage, TaxAmount, CoefficientC",
                           kSuppliedKeys};

constexpr TScaleTable kHECS{"STSL Scale",
                            "_iptblHECSScales",
                            "idHECSScales",
                            "cDescription",
                            false,
                            nullptr,
                            "_iptblHECSBrackets",
                            "idHECSBrackets",
                            "iHECSScalesID",
                            "iTaxYear",
                            "fWeeklyEarnings, CoefficientA, CoefficientB",
                            0};

constexpr TScaleTable kSFSS{"SFSS Scale",
                            "_iptblSFSSScales",
                            "idSFSSScales",
                            "cDescription",
                            false,
                            nullptr,
                            "_iptblSFSSBrackets",
                            "idSFSSBrackets",
                            "iSFSSScalesID",
                            "iTaxYear",
                            "fWeeklyEarnings, CoefficientA",
                            0};

// Tax scales come after the Medicare scales that they refer to.
constexpr const TScaleTable *kScaleTables[] = {&kMedicare, &kTax, &kHECS, &kSFSS};

// A table of parameters by country and year, whose keys the server makes.
struct TParameterTable
{
    const char *description;
    const char *table;
    int country; // whose parameters they are
    const char *columns;
};

constexpr TParameterTable kParameterTables[] = {
    {"Termination values", "_iptblSGLTaxParameters", kAustralia,
     "TerminationTaxRate, TermNoTFNResidentRate, TermNoTFNNonResRate, TermPost93GrossRate, TermPost93GrossLimit, "
     "TermAssAmtPercent, TermSpecRateMedLevy, ReducedTaxRate, TermAboveCapRate, TaxReductionAmount, TermETPUpperCap, "
     "TermWholeOfIncomeCap, TermETPInitTaxFree, TermETPAnnualTaxFree"},
    {"Levy, student loan and payroll giving", "_iptblTaxParametersNZ", kNewZealand,
     "fPayrollGivingCredit, fLoanRate, fAnnualLoanThreshold, fLevyFixedAmount, fLevyRate, fAnnualLevyThreshold"},
    {"Rounding", "_iptblTaxOptions", kEveryCountry, "fRoundTaxableGrossTo, fRoundTaxTo"},
    {"Lump sum tax rates", "_iptblLumpSumTaxRates", kNewZealand, "fLumpSum, fTaxRate"},
    {"Rebates", "_iptblTaxRebates", kNewZealand, "fAnnualValue, fRate, fAmount"},
};

// What is to be done, with what it takes to do it.
struct TStep
{
    TTaxYearItem item;
    const TScaleTable *scales = nullptr;
    const TParameterTable *parameters = nullptr;
    int source = 0;       // key of the scale
    QString medicareCode; // of a tax scale
};

QString Sql(const char *pattern, const QStringList &names)
{
    return FormatText(QString::fromLatin1(pattern), names);
}

TDbParams YearOf(bool byCountry, int year)
{
    TDbParams params{{"year", year}};
    if (byCountry)
        params.insert("country", int(CountryCode));
    return params;
}

// The codes of a year's scales as the database compares them: without regard to case and trailing blanks.
QString CodeOf(const QVariant &code)
{
    QString text = code.toString();
    while (text.endsWith(u' '))
        text.chop(1);
    return text.toLower();
}

void PlanScales(const TScaleTable &scales, int fromYear, int toYear, QList<TStep> &steps)
{
    const char *const country = scales.byCountry ? " and iCountry = :country" : "";
    const bool tax = &scales == &kTax;
    const TDbRows there = MainConnection().Select(
        Sql("select cCode from %s where iTaxYear = :year%s order by cCode", {scales.table, country}),
        YearOf(scales.byCountry, toYear));
    QSet<QString> codes;
    for (int row = 0; row < there.size(); ++row)
        codes.insert(CodeOf(there.Value(row, u"cCode")));

    const TDbRows here = MainConnection().Select(
        Sql("select %s, cCode, %s%s from %s where iTaxYear = :year%s order by cCode, %s",
            {scales.key, scales.description, tax ? ", cMedicareScaleCode" : "", scales.table, country, scales.key}),
        YearOf(scales.byCountry, fromYear));
    for (int row = 0; row < here.size(); ++row) {
        TStep step;
        step.scales = &scales;
        step.source = here.Value(row, QString::fromLatin1(scales.key)).toInt();
        step.item.kind = QString::fromLatin1(scales.kind);
        step.item.code = here.Value(row, u"cCode").toString();
        step.item.description = here.Value(row, QString::fromLatin1(scales.description)).toString();
        step.item.exists = codes.contains(CodeOf(step.item.code));
        if (tax)
            step.medicareCode = here.Value(row, u"cMedicareScaleCode").toString();
        steps.append(step);
    }
}

void PlanParameters(const TParameterTable &parameters, int fromYear, int toYear, QList<TStep> &steps)
{
    const auto rowsOf = [&parameters](int year) {
        return MainConnection()
            .Select(Sql("select count(*) as iRows from %s where iTaxYear = :year and iCountry = :country",
                        {parameters.table}),
                    YearOf(true, year))
            .Value(0, u"iRows")
            .toInt();
    };
    if ((parameters.country != kEveryCountry && parameters.country != CountryCode) || rowsOf(fromYear) == 0)
        return;
    TStep step;
    step.parameters = &parameters;
    step.item.kind = QStringLiteral("Tax Parameters");
    step.item.description = QString::fromLatin1(parameters.description);
    step.item.exists = rowsOf(toYear) > 0;
    steps.append(step);
}

QList<TStep> Plan(int fromYear, int toYear)
{
    QList<TStep> steps;
    for (const TScaleTable *scales : kScaleTables)
        PlanScales(*scales, fromYear, toYear, steps);
    for (const TParameterTable &parameters : kParameterTables)
        PlanParameters(parameters, fromYear, toYear, steps);
    return steps;
}

// One run of a copy, inside its transaction.
class TCopier
{
public:
    TCopier(int fromYear, int toYear)
        : fromYear_(fromYear)
        , toYear_(toYear)
    {}

    void Do(const TStep &step)
    {
        if (step.parameters)
            CopyParameters(*step.parameters);
        else
            CopyScale(step);
    }

private:
    void CopyParameters(const TParameterTable &parameters)
    {
        MainConnection().Execute(Sql("insert into %s (iTaxYear, iCountry, %s) select :toYear, iCountry, %s from %s "
                                     "where iTaxYear = :year and iCountry = :country",
                                     {parameters.table, parameters.columns, parameters.columns, parameters.table}),
                                 With(YearOf(true, fromYear_), {{"toYear", toYear_}}));
    }

    void CopyScale(const TStep &step)
    {
        const TScaleTable &scales = *step.scales;
        const bool tax = &scales == &kTax;
        const QString columns =
            QStringLiteral("cCode, ") + QString::fromLatin1(scales.description) +
            (scales.columns ? QStringLiteral(", ") + QString::fromLatin1(scales.columns) : QString());
        const int key = NextKey(scales.table, scales.key, kSuppliedKeys);
        TDbParams params{{"id", key}, {"toYear", toYear_}, {"source", step.source}};
        if (tax)
            params.insert("medicare", MedicareID(step.medicareCode));
        // Whoever supplied the scale of the other year, this one is the user's.
        MainConnection().Execute(
            Sql("insert into %s (%s, iTaxYear, %s%s) select :id, :toYear, %s%s from %s where %s = :source",
                {scales.table, scales.key, columns, tax ? ", bUserDefinable, iMedicareScalesID" : "", columns,
                 tax ? ", 1, :medicare" : "", scales.table, scales.key}),
            params);
        if (scales.bracketTable)
            CopyBrackets(scales, step.source, key);
    }

    void CopyBrackets(const TScaleTable &scales, int source, int owner)
    {
        const QList<int> brackets = BracketsOf(scales).value(source);
        const QString insert =
            Sql("insert into %s (%s, %s, %s, %s) select :id, :owner, :toYear, %s from %s where %s = :source",
                {scales.bracketTable, scales.bracketKey, scales.bracketOwner, scales.bracketYear, scales.bracketColumns,
                 scales.bracketColumns, scales.bracketTable, scales.bracketKey});
        for (const int bracket : brackets) {
            MainConnection().Execute(insert,
                                     {{"id", NextKey(scales.bracketTable, scales.bracketKey, scales.bracketKeysBelow)},
                                      {"owner", owner},
                                      {"toYear", toYear_},
                                      {"source", bracket}});
        }
    }

    // Keys of the year's brackets by scale, read once a table.
    const QHash<int, QList<int>> &BracketsOf(const TScaleTable &scales)
    {
        const auto known = brackets_.constFind(scales.bracketTable);
        if (known != brackets_.constEnd())
            return *known;
        QHash<int, QList<int>> &brackets = brackets_[scales.bracketTable];
        const TDbRows rows = MainConnection().Select(
            Sql("select %s as idBracket, %s as iOwner from %s where %s = :year order by %s",
                {scales.bracketKey, scales.bracketOwner, scales.bracketTable, scales.bracketYear, scales.bracketKey}),
            {{"year", fromYear_}});
        for (int row = 0; row < rows.size(); ++row)
            brackets[rows.Value(row, u"iOwner").toInt()].append(rows.Value(row, u"idBracket").toInt());
        return brackets;
    }

    // The highest key is asked for once; nobody else writes until the transaction ends.
    int NextKey(const char *table, const char *keyField, int floor)
    {
        const auto known = keys_.find(table);
        if (known != keys_.end())
            return ++*known;
        return *keys_.insert(table, GetIdxKey(QString::fromLatin1(keyField), QString::fromLatin1(table), floor));
    }

    int MedicareID(const QString &code) const
    {
        if (code.trimmed().isEmpty())
            return 0;
        const TDbRows rows = MainConnection().Select(
            "select idMedicareScales from _iptblMedicareScales where cCode = :code and iTaxYear = :year "
            "order by idMedicareScales",
            {{"code", code}, {"year", toYear_}});
        return rows.isEmpty() ? 0 : rows.Value(0, u"idMedicareScales").toInt();
    }

    static TDbParams With(TDbParams params, const TDbParams &more)
    {
        params.insert(more);
        return params;
    }

    const int fromYear_;
    const int toYear_;
    QHash<QByteArray, int> keys_;
    QHash<QByteArray, QHash<int, QList<int>>> brackets_;
};

} // namespace

QList<TTaxYearItem> PlanTaxYearCopy(int fromYear, int toYear)
{
    QList<TTaxYearItem> items;
    for (const TStep &step : Plan(fromYear, toYear))
        items.append(step.item);
    return items;
}

int CopyTaxYear(int fromYear, int toYear, const std::function<bool(int done, int total)> &progress)
{
    if (fromYear == toYear)
        return 0;
    TDbTransaction transaction(MainConnection());
    // Planned once more: somebody may have been at work since the plan was shown.
    QList<TStep> steps = Plan(fromYear, toYear);
    steps.removeIf([](const TStep &step) { return step.item.exists; });
    const int total = int(steps.size());
    TCopier copier(fromYear, toYear);
    for (int done = 0; done < total; ++done) {
        if (!progress(done, total))
            return -1;
        copier.Do(steps[done]);
    }
    if (!progress(total, total))
        return -1;
    if (total > 0)
        LogActivity(QStringLiteral("Tax Year"), QString::number(toYear), QStringLiteral("Added"));
    transaction.Commit();
    return total;
}

QList<int> TaxYearsWithData()
{
    QSet<int> years;
    const auto add = [&years](const char *table) {
        const TDbRows rows = MainConnection().Select(
            Sql("select iTaxYear from %s where iTaxYear is not null group by iTaxYear order by iTaxYear", {table}));
        for (int row = 0; row < rows.size(); ++row)
            years.insert(rows.Value(row, u"iTaxYear").toInt());
    };
    for (const TScaleTable *scales : kScaleTables)
        add(scales->table);
    for (const TParameterTable &parameters : kParameterTables) {
        if (parameters.country == kEveryCountry || parameters.country == CountryCode)
            add(parameters.table);
    }
    QList<int> sorted(years.begin(), years.end());
    std::sort(sorted.begin(), sorted.end(), std::greater<>());
    return sorted;
}
