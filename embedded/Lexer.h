// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

#include "embedded/Engine.h"

namespace embedded {

// Where a token stands within its text, both counted from 1.
struct Place
{
    int line = 0;
    int column = 0;
};

struct Token
{
    enum class Kind { End, Word, Quoted, String, Integer, Decimal, Variable, Symbol };

    Kind kind = Kind::End;
    QString text;  // without its quotes; variables carry their '@' (':name' is read as '@name')
    QString lower; // of words: for comparison with keywords
    Place place;
    qsizetype offset = 0; // first character in the source
    qsizetype end = 0;    // one past the last
    bool colon = false;   // a variable that was written ':name'

    bool Is(QLatin1StringView keyword) const { return kind == Kind::Word && lower == keyword; }
    bool IsSymbol(QLatin1StringView symbol) const { return kind == Kind::Symbol && text == symbol; }
    bool IsName() const { return kind == Kind::Word || kind == Kind::Quoted; }
};

// Splits a batch into tokens; the last one is Kind::End. Throws Error (Syntax or Refused).
QList<Token> Lex(const QString &text);

// "X is not part of the supported SQL (line l, column c)."
[[noreturn]] void Refuse(const QString &what, Place place);
// "Incorrect syntax near 'x' (line l, column c)."
[[noreturn]] void SyntaxError(const QString &near, Place place);
// Any other error, with a place when it has one.
[[noreturn]] void Fail(Error::Kind kind, int number, const QString &text, Place place = {}, const QString &token = {});
// Kind::Unknown with the text as it stands.
[[noreturn]] void Unknown(int number, const QString &text, Place place, const QString &token);
// A variable that nobody declared.
[[noreturn]] void Undeclared(const QString &name, Place place);

} // namespace embedded
