// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <stdexcept>

#include "framework/data/Database.h"

class QIODevice;

// A row of a directory file that was not taken.
struct TBSBRefusedRow
{
    int line = 0;   // where the row begins in the file, from 1
    QString bsb;    // as the file has it
    QString reason; // for a person
};

struct TBSBImportResult
{
    bool cancelled = false; // nothing was written; the counts say how far the work had come
    int added = 0;
    int changed = 0; // an existing bank got another name, branch name or state
    int unchanged = 0;
    int closed = 0;     // merged or closed branches that are not here, and stay so
    int closedKept = 0; // merged or closed branches that are here: left as they are, since payments may refer to them
    QList<TBSBRefusedRow> refused;

    int Rows() const { return added + changed + unchanged + closed + closedKept + int(refused.size()); }
};

// A file that cannot be taken as a directory at all; what() is for a person, in UTF-8. Nothing was written.
class TBSBFileError final : public std::runtime_error
{
public:
    explicit TBSBFileError(const QString &text)
        : std::runtime_error(text.toStdString())
    {}
};

// Told the rows done and the rows in all, at the start, after every few hundred rows and at the end; false cancels.
using TBSBProgress = std::function<bool(qint64 done, qint64 total)>;

// Brings the banks up to date with a published BSB directory, in one transaction of its own.
// `csv` is open for reading: UTF-8 text of comma-separated values, either with a heading row that names the columns
// bsb, bank_code, bank_name, branch_name, state and, where there is one, status, or without headings as BSB,
// institution abbreviation, branch name, address, suburb, state, postcode, payment flags (bank names then come from the
// table of institutions). Banks are matched by BSB number, in the format of the installation; a new bank's code is
// BSBBankCode. Banks that the file does not name stay as they are. Throws TBSBFileError and TDbError.
TBSBImportResult ImportBSBDirectory(TDbConnection &connection, QIODevice &csv, const TBSBProgress &progress = {});

// The code of an imported bank: the institution's letters and digits, then the digits of the BSB ("ANZ012004"), at most
// ten characters, of which the BSB's are kept first.
QString BSBBankCode(const QString &institution, const QString &bsb);
