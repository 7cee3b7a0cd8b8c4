// SPDX-License-Identifier: Apache-2.0
#include "banking/BSBDirectoryImport.h"

#include <QHash>
#include <QIODevice>
#include <QSet>
#include <QStringDecoder>

#include <algorithm>
#include <optional>

namespace {

constexpr int kCodeLimit = 10;
constexpr int kNameLimit = 50;
constexpr int kChunk = 200; // rows looked up by one statement
constexpr qint64 kFileLimit = 64 * 1024 * 1024;

struct TCsvRow
{
    int line = 0;
    QStringList fields;
};

// RFC 4180: fields in quotes may hold commas, line ends and doubled quotes; a line may end with CR, LF or both.
class TCsvReader
{
public:
    explicit TCsvReader(QString text)
        : text_(std::move(text))
    {}

    // The next row that is not empty; nothing at the end.
    std::optional<TCsvRow> Next()
    {
        while (at_ < text_.size()) {
            TCsvRow row{line_, {}};
            bool more = true;
            while (more) {
                row.fields.append(Field());
                more = at_ < text_.size() && text_[at_] == QLatin1Char(',');
                if (more)
                    ++at_;
            }
            EndLine();
            if (row.fields.size() > 1 || !row.fields.first().trimmed().isEmpty())
                return row;
        }
        return std::nullopt;
    }

private:
    QString Field() { return at_ < text_.size() && text_[at_] == QLatin1Char('"') ? Quoted() : Plain(); }

    QString Plain()
    {
        const qsizetype start = at_;
        while (at_ < text_.size() && text_[at_] != QLatin1Char(',') && !AtLineEnd())
            ++at_;
        return text_.mid(start, at_ - start);
    }

    QString Quoted()
    {
        const int opened = line_;
        QString field;
        for (++at_; at_ < text_.size(); ++at_) {
            if (text_[at_] != QLatin1Char('"')) {
                CountLine();
                field += text_[at_];
                continue;
            }
            ++at_;
            if (at_ >= text_.size() || text_[at_] != QLatin1Char('"'))
                return field + Plain(); // what follows the closing quote belongs to the field, as spreadsheets read it
            field += QLatin1Char('"');
        }
        throw TBSBFileError(QStringLiteral("The quotation mark opened in line %1 is never closed.").arg(opened));
    }

    bool AtLineEnd() const { return text_[at_] == QLatin1Char('\n') || text_[at_] == QLatin1Char('\r'); }

    void CountLine()
    {
        if (text_[at_] == QLatin1Char('\n') ||
            (text_[at_] == QLatin1Char('\r') && (at_ + 1 >= text_.size() || text_[at_ + 1] != QLatin1Char('\n'))))
            ++line_;
    }

    void EndLine()
    {
        const bool carriageReturn = at_ < text_.size() && text_[at_] == QLatin1Char('\r');
        if (at_ < text_.size()) {
            CountLine();
            ++at_;
        }
        if (carriageReturn && at_ < text_.size() && text_[at_] == QLatin1Char('\n')) {
            ++at_;
            ++line_;
        }
    }

    QString text_;
    qsizetype at_ = 0;
    int line_ = 1;
};

// Where the columns of a file stand; -1 for one that it does not have.
struct TLayout
{
    int bsb = 0;
    int institution = 1;
    int bankName = -1;
    int branchName = 2;
    int state = 5;
    int status = -1;
    int fields = 6; // that a row must have
};

// A row of the file, read and checked.
struct TBranch
{
    int line = 0;
    QString bsb;
    QString code;
    QString bankName;
    QString branchName;
    int stateID = 0;
    bool closed = false;
};

struct TStoredBank
{
    int id = 0;
    QString bankName;
    QString branchName;
    int stateID = 0;
};

QString ReadText(QIODevice &csv)
{
    const QByteArray bytes = csv.read(kFileLimit + 1);
    if (bytes.size() > kFileLimit)
        throw TBSBFileError(QStringLiteral("The file is too large to be a BSB directory."));
    QStringDecoder decoder(QStringDecoder::Utf8); // drops a byte-order mark
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        throw TBSBFileError(QStringLiteral("The file is not UTF-8 text."));
    return text;
}

QString Digits(const QString &text)
{
    QString digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
    return digits;
}

// A bank number in the format of the installation (0 a digit, 9 a digit or nothing, all else itself), whether or not
// the file writes the separators; nothing when it does not fit.
std::optional<QString> FormattedBSB(const QString &text, const QString &format)
{
    const QString digits = Digits(text);
    const bool separatorsOnly = std::all_of(text.begin(), text.end(), [](QChar c) {
        return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('-') || c == QLatin1Char(' ');
    });
    qsizetype spare = digits.size() - format.count(QLatin1Char('0'));
    if (!separatorsOnly || digits.isEmpty() || spare < 0 || spare > format.count(QLatin1Char('9')))
        return std::nullopt;
    QString number;
    qsizetype next = 0;
    for (const QChar c : format) {
        if (c == QLatin1Char('0')) {
            number += digits[next++];
        } else if (c == QLatin1Char('9')) {
            if (spare > 0) {
                number += digits[next++];
                --spare;
            }
        } else {
            number += c;
        }
    }
    return number;
}

// An institution's long name ends with what it is a division of, or what it trades as: that goes first.
QString FittingName(const QString &name)
{
    if (name.size() <= kNameLimit)
        return name;
    qsizetype end = name.size();
    for (const QString &mark : {QStringLiteral(" ("), QStringLiteral(", ")}) {
        if (const qsizetype at = name.indexOf(mark); at > 0)
            end = std::min(end, at);
    }
    return name.left(end).trimmed();
}

bool HoldsControlCharacter(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.category() == QChar::Other_Control; });
}

class TImport
{
public:
    TImport(TDbConnection &connection, QIODevice &csv, const TBSBProgress &progress)
        : connection_(connection)
        , progress_(progress)
    {
        TCsvReader reader(ReadText(csv));
        std::optional<TCsvRow> row = reader.Next();
        if (!row)
            throw TBSBFileError(QStringLiteral("The file is empty."));
        if (!ReadHeading(*row))
            rows_.append(*row);
        while ((row = reader.Next()))
            rows_.append(*std::move(row));
    }

    TBSBImportResult Run()
    {
        TDbTransaction transaction(connection_);
        LoadLookups();
        const qsizetype total = rows_.size();
        bool goOn = Report(0);
        for (qsizetype start = 0; goOn && start < total; start += kChunk) {
            const qsizetype end = std::min(start + kChunk, total);
            QList<TBranch> branches;
            for (qsizetype i = start; i < end; ++i)
                Check(rows_[i], branches);
            Store(branches);
            goOn = Report(end);
        }
        result_.cancelled = !goOn;
        if (goOn)
            transaction.Commit();
        return std::move(result_);
    }

private:
    bool Report(qint64 done) const { return !progress_ || progress_(done, rows_.size()); }

    // True when the row is a heading; false when it is the first row of a file without one.
    bool ReadHeading(const TCsvRow &row)
    {
        QHash<QString, int> names;
        for (int i = 0; i < row.fields.size(); ++i)
            names.insert(row.fields[i].trimmed().toLower(), i);
        if (!names.contains(QStringLiteral("bsb"))) {
            const QString first = row.fields.first().trimmed();
            if (row.fields.size() >= layout_.fields && Digits(first).size() >= 6 &&
                Digits(first).size() >= first.size() - 1)
                return false;
            throw TBSBFileError(
                QStringLiteral("The file is not a BSB directory: its first line names no \"bsb\" column "
                               "and does not begin with a BSB number."));
        }
        QStringList missing;
        const auto column = [&](const QString &name, bool required) {
            const int at = names.value(name, -1);
            if (at < 0 && required)
                missing.append(name);
            layout_.fields = std::max(layout_.fields, at + 1);
            return at;
        };
        layout_.fields = 0;
        layout_.bsb = column(QStringLiteral("bsb"), true);
        layout_.institution = column(QStringLiteral("bank_code"), true);
        layout_.bankName = column(QStringLiteral("bank_name"), true);
        layout_.branchName = column(QStringLiteral("branch_name"), true);
        layout_.state = column(QStringLiteral("state"), true);
        layout_.status = column(QStringLiteral("status"), false);
        if (!missing.isEmpty())
            throw TBSBFileError(
                QStringLiteral("The file has no column \"%1\".").arg(missing.join(QStringLiteral("\", \""))));
        return true;
    }

    void LoadLookups()
    {
        const TDbRows defaults =
            connection_.Select(QStringLiteral("select top 1 cBSBFormat from Defaults order by idDefaults"));
        if (!defaults.isEmpty())
            format_ = defaults.Value(0, u"cBSBFormat").toString().trimmed();
        const TDbRows states =
            connection_.Select(QStringLiteral("select idState, cStateCode from _iptblStates order by idState desc"));
        for (int i = 0; i < states.size(); ++i)
            states_.insert(states.Value(i, u"cStateCode").toString().trimmed().toUpper(),
                           states.Value(i, u"idState").toInt());
        const TDbRows institutions = connection_.Select(QStringLiteral(
            "select cInstitutionCode, cInstitutionName from _iptblBankInstitutions order by idBankInstitution"));
        for (int i = 0; i < institutions.size(); ++i)
            institutions_.insert(institutions.Value(i, u"cInstitutionCode").toString().trimmed().toUpper(),
                                 institutions.Value(i, u"cInstitutionName").toString());
    }

    // Appends what the row says to `branches`, or the row to the refused ones.
    void Check(const TCsvRow &row, QList<TBranch> &branches)
    {
        const auto field = [&row](int column) {
            return column >= 0 && column < row.fields.size() ? row.fields[column].simplified() : QString();
        };
        const auto refuse = [&](const QString &reason) {
            result_.refused.append({row.line, field(layout_.bsb), reason});
        };
        if (row.fields.size() < layout_.fields)
            return refuse(
                QStringLiteral("The row has %1 fields; %2 are needed.").arg(row.fields.size()).arg(layout_.fields));
        const std::optional<QString> bsb = FormattedBSB(field(layout_.bsb), format_);
        if (!bsb)
            return refuse(QStringLiteral("The BSB is not of the form %1.").arg(format_));
        if (const int earlier = seen_.value(*bsb); earlier)
            return refuse(QStringLiteral("The BSB is already in line %1.").arg(earlier));

        TBranch branch{row.line, *bsb, {}, {}, field(layout_.branchName), 0, false};
        const QString status = layout_.status >= 0 ? field(layout_.status) : branch.branchName;
        branch.closed = status.compare(QLatin1StringView("merged"), Qt::CaseInsensitive) == 0 ||
                        status.compare(QLatin1StringView("closed"), Qt::CaseInsensitive) == 0;
        if (!branch.closed) {
            const QString institution = field(layout_.institution);
            branch.bankName =
                FittingName(layout_.bankName >= 0 ? field(layout_.bankName)
                                                  : institutions_.value(institution.toUpper(), institution));
            branch.code = BSBBankCode(institution, *bsb);
            branch.stateID = states_.value(field(layout_.state).toUpper());
            if (branch.bankName.isEmpty())
                return refuse(QStringLiteral("The bank name is blank."));
            if (branch.branchName.isEmpty())
                return refuse(QStringLiteral("The branch name is blank."));
            if (branch.bankName.size() > kNameLimit)
                return refuse(QStringLiteral("The bank name is longer than %1 characters.").arg(kNameLimit));
            if (branch.branchName.size() > kNameLimit)
                return refuse(QStringLiteral("The branch name is longer than %1 characters.").arg(kNameLimit));
            if (HoldsControlCharacter(branch.bankName) || HoldsControlCharacter(branch.branchName))
                return refuse(QStringLiteral("A name holds a control character."));
            if (!branch.stateID)
                return refuse(QStringLiteral("The state \"%1\" is not known.").arg(field(layout_.state)));
        }
        seen_.insert(*bsb, row.line);
        branches.append(branch);
    }

    // `column` of the banks in question, by one statement however many there are.
    TDbRows BanksWhere(const QString &column, const QStringList &values)
    {
        QStringList names;
        TDbParams params;
        for (int i = 0; i < values.size(); ++i) {
            names.append(QStringLiteral(":v%1").arg(i));
            params.insert(QStringLiteral("v%1").arg(i), values[i]);
        }
        return connection_.Select(QStringLiteral("select idBank, cCode, cBankName, cBranchName, cBSBNumber, iStateID "
                                                 "from _iptblBanks where %1 in (%2) order by idBank desc")
                                      .arg(column, names.join(QLatin1Char(','))),
                                  params);
    }

    void Store(const QList<TBranch> &branches)
    {
        if (branches.isEmpty())
            return;
        QStringList numbers;
        QStringList codes;
        for (const TBranch &branch : branches) {
            numbers.append(branch.bsb);
            if (!branch.closed)
                codes.append(branch.code);
        }
        QHash<QString, TStoredBank> stored;
        const TDbRows banks = BanksWhere(QStringLiteral("cBSBNumber"), numbers);
        for (int i = 0; i < banks.size(); ++i) // the first made bank of a number comes last and stays
            stored.insert(banks.Value(i, u"cBSBNumber").toString().trimmed(),
                          {banks.Value(i, u"idBank").toInt(), banks.Value(i, u"cBankName").toString().trimmed(),
                           banks.Value(i, u"cBranchName").toString().trimmed(), banks.Value(i, u"iStateID").toInt()});
        QSet<QString> takenCodes;
        if (!codes.isEmpty()) {
            const TDbRows taken = BanksWhere(QStringLiteral("cCode"), codes);
            for (int i = 0; i < taken.size(); ++i)
                takenCodes.insert(taken.Value(i, u"cCode").toString().trimmed().toUpper());
        }
        for (const TBranch &branch : branches) {
            const auto known = stored.constFind(branch.bsb);
            if (branch.closed)
                ++(known == stored.cend() ? result_.closed : result_.closedKept);
            else if (known == stored.cend())
                Add(branch, takenCodes);
            else if (known->bankName == branch.bankName && known->branchName == branch.branchName &&
                     known->stateID == branch.stateID)
                ++result_.unchanged;
            else
                Change(branch, known->id);
        }
    }

    void Add(const TBranch &branch, QSet<QString> &takenCodes)
    {
        if (takenCodes.contains(branch.code)) {
            result_.refused.append(
                {branch.line, branch.bsb, QStringLiteral("The code \"%1\" belongs to another bank.").arg(branch.code)});
            return;
        }
        takenCodes.insert(branch.code);
        connection_.Execute(
            QStringLiteral("insert into _iptblBanks (cCode, cBankName, cBranchName, cBSBNumber, iStateID) "
                           "values (:code, :bank, :branch, :bsb, :state)"),
            {{QStringLiteral("code"), branch.code},
             {QStringLiteral("bank"), branch.bankName},
             {QStringLiteral("branch"), branch.branchName},
             {QStringLiteral("bsb"), branch.bsb},
             {QStringLiteral("state"), branch.stateID}});
        ++result_.added;
    }

    void Change(const TBranch &branch, int id)
    {
        connection_.Execute(QStringLiteral("update _iptblBanks set cBankName = :bank, cBranchName = :branch, "
                                           "iStateID = :state where idBank = :id"),
                            {{QStringLiteral("bank"), branch.bankName},
                             {QStringLiteral("branch"), branch.branchName},
                             {QStringLiteral("state"), branch.stateID},
                             {QStringLiteral("id"), id}});
        ++result_.changed;
    }

    TDbConnection &connection_;
    const TBSBProgress &progress_;
    TLayout layout_;
    QList<TCsvRow> rows_;
    QString format_ = QStringLiteral("000-000");
    QHash<QString, int> states_;
    QHash<QString, QString> institutions_;
    QHash<QString, int> seen_; // lines by BSB number
    TBSBImportResult result_;
};

} // namespace

QString BSBBankCode(const QString &institution, const QString &bsb)
{
    const QString digits = Digits(bsb).left(kCodeLimit);
    QString letters;
    for (const QChar c : institution.toUpper()) {
        if ((c >= QLatin1Char('A') && c <= QLatin1Char('Z')) || (c >= QLatin1Char('0') && c <= QLatin1Char('9')))
            letters += c;
    }
    return letters.left(kCodeLimit - digits.size()) + digits;
}

TBSBImportResult ImportBSBDirectory(TDbConnection &connection, QIODevice &csv, const TBSBProgress &progress)
{
    return TImport(connection, csv, progress).Run();
}
