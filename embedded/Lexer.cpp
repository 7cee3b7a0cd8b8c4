// SPDX-License-Identifier: Apache-2.0
#include "embedded/Lexer.h"

namespace embedded {

Error::Error(Kind errorKind, int errorNumber, QString message, int errorLine, int errorColumn, QString errorToken,
             QString sql)
    : kind(errorKind)
    , number(errorNumber)
    , text(std::move(message))
    , line(errorLine)
    , column(errorColumn)
    , token(std::move(errorToken))
    , statement(std::move(sql))
    , utf8_(text.toUtf8())
{}

void Refuse(const QString &what, Place place)
{
    throw Error(Error::Kind::Refused, 156,
                QStringLiteral("%1 is not part of the supported SQL (line %2, column %3).")
                    .arg(what)
                    .arg(place.line)
                    .arg(place.column),
                place.line, place.column, what);
}

void SyntaxError(const QString &near, Place place)
{
    throw Error(
        Error::Kind::Syntax, 102,
        QStringLiteral("Incorrect syntax near '%1' (line %2, column %3).").arg(near).arg(place.line).arg(place.column),
        place.line, place.column, near);
}

void Fail(Error::Kind kind, int number, const QString &text, Place place, const QString &token)
{
    throw Error(kind, number, text, place.line, place.column, token);
}

void Unknown(int number, const QString &text, Place place, const QString &token)
{
    Fail(Error::Kind::Unknown, number, text, place, token);
}

void Undeclared(const QString &name, Place place)
{
    Unknown(137, QStringLiteral("Must declare the scalar variable \"%1\".").arg(name), place, name);
}

namespace {

class Lexer
{
public:
    explicit Lexer(const QString &text)
        : text_(text)
    {}

    QList<Token> Run()
    {
        QList<Token> tokens;
        for (;;) {
            SkipBlanks();
            Token token = Next();
            token.end = at_;
            tokens.append(token);
            if (token.kind == Token::Kind::End)
                return tokens;
        }
    }

private:
    QChar Peek(qsizetype ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : QChar(); }
    bool AtEnd() const { return at_ >= text_.size(); }
    Place Here() const { return {line_, int(at_ - lineStart_) + 1}; }
    static bool StartsWord(QChar c) { return c.isLetter() || c == u'_' || c == u'#'; }
    static bool InWord(QChar c) { return c.isLetterOrNumber() || c == u'_' || c == u'#' || c == u'$' || c == u'@'; }

    QChar Take()
    {
        const QChar c = text_[at_++];
        if (c == u'\n') {
            ++line_;
            lineStart_ = at_;
        }
        return c;
    }

    void SkipBlanks()
    {
        while (!AtEnd()) {
            const QChar c = Peek();
            if (c.isSpace() || c == QChar(0xfeff)) {
                Take();
            } else if (c == u'-' && Peek(1) == u'-') {
                while (!AtEnd() && Peek() != u'\n')
                    Take();
            } else if (c == u'/' && Peek(1) == u'*') {
                SkipComment();
            } else {
                return;
            }
        }
    }

    void SkipComment() // they nest
    {
        const Place start = Here();
        int depth = 0;
        do {
            if (AtEnd())
                SyntaxError(QStringLiteral("/*"), start);
            if (Peek() == u'/' && Peek(1) == u'*') {
                ++depth;
                Take();
            } else if (Peek() == u'*' && Peek(1) == u'/') {
                --depth;
                Take();
            }
            Take();
        } while (depth > 0);
    }

    Token Next()
    {
        Token token;
        token.place = Here();
        token.offset = at_;
        if (AtEnd())
            return token;
        const QChar c = Peek();
        if ((c == u'N' || c == u'n') && Peek(1) == u'\'') {
            Take();
            token.kind = Token::Kind::String;
            token.text = Quoted(u'\'', token.place);
        } else if (c == u'\'') {
            token.kind = Token::Kind::String;
            token.text = Quoted(u'\'', token.place);
        } else if (c == u'"' || c == u'[') {
            token.kind = Token::Kind::Quoted;
            token.text = Quoted(c == u'[' ? u']' : u'"', token.place);
            if (token.text.isEmpty())
                SyntaxError(text_.mid(token.offset, 2), token.place);
        } else if (StartsWord(c)) {
            token.kind = Token::Kind::Word;
            while (InWord(Peek()))
                Take();
            token.text = text_.mid(token.offset, at_ - token.offset);
            token.lower = token.text.toLower();
        } else if (c.isDigit() || (c == u'.' && Peek(1).isDigit())) {
            Number(token);
        } else if (c == u'@' || (c == u':' && StartsWord(Peek(1)))) {
            Variable(token);
        } else {
            Symbol(token);
        }
        return token;
    }

    QString Quoted(char16_t close, Place start)
    {
        QString result;
        Take();
        for (;;) {
            if (AtEnd())
                SyntaxError(close == u'\''  ? QStringLiteral("'")
                            : close == u']' ? QStringLiteral("[")
                                            : QStringLiteral("\""),
                            start);
            const QChar c = Take();
            if (c.isNull())
                SyntaxError(QStringLiteral("\\0"), start); // SQLite would take it for the end of the statement
            if (c == close) {
                if (Peek() != close)
                    return result;
                Take();
            }
            result += c;
        }
    }

    void Number(Token &token)
    {
        const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
        token.kind = Token::Kind::Integer;
        if (Peek() == u'0' && (Peek(1) == u'x' || Peek(1) == u'X'))
            Refuse(text_.mid(at_, 2), token.place);
        while (isDigit(Peek()))
            Take();
        if (Peek() == u'.') {
            token.kind = Token::Kind::Decimal;
            Take();
            while (isDigit(Peek()))
                Take();
        }
        const bool sign = Peek(1) == u'+' || Peek(1) == u'-';
        if ((Peek() == u'e' || Peek() == u'E') && isDigit(Peek(sign ? 2 : 1))) {
            token.kind = Token::Kind::Decimal;
            at_ += sign ? 2 : 1;
            while (isDigit(Peek()))
                Take();
        }
        token.text = text_.mid(token.offset, at_ - token.offset);
        if (token.text.isEmpty() || InWord(Peek())) // "1abc", or a digit of another script
            SyntaxError(text_.mid(token.offset, at_ - token.offset + 1), token.place);
    }

    void Variable(Token &token)
    {
        token.kind = Token::Kind::Variable;
        token.colon = Take() == u':';
        while (InWord(Peek()))
            Take();
        token.text = u'@' + text_.mid(token.offset + 1, at_ - token.offset - 1);
        if (token.text.size() < 2 || token.text == QLatin1StringView("@@"))
            SyntaxError(token.text, token.place);
    }

    void Symbol(Token &token)
    {
        static const QLatin1StringView pairs[] = {QLatin1StringView("<>"), QLatin1StringView("!="),
                                                  QLatin1StringView("<="), QLatin1StringView(">=")};
        static const QLatin1StringView foreign[] = {
            QLatin1StringView("||"), QLatin1StringView("->"), QLatin1StringView("<<"), QLatin1StringView(">>"),
            QLatin1StringView("=="), QLatin1StringView("!<"), QLatin1StringView("!>"), QLatin1StringView("+="),
            QLatin1StringView("-="), QLatin1StringView("*="), QLatin1StringView("/="), QLatin1StringView("::")};
        token.kind = Token::Kind::Symbol;
        const QStringView two = QStringView(text_).mid(at_, 2);
        for (const QLatin1StringView symbol : foreign) {
            if (two == symbol)
                Refuse(symbol, token.place);
        }
        for (const QLatin1StringView symbol : pairs) {
            if (two == symbol) {
                token.text = symbol == QLatin1StringView("!=") ? QStringLiteral("<>") : QString(symbol);
                at_ += 2;
                return;
            }
        }
        const QChar c = Peek();
        if (QStringLiteral("(),.;+-*/%=<>&|~").contains(c)) {
            token.text = Take();
            return;
        }
        if (QStringLiteral("?{}^$`").contains(c))
            Refuse(c, token.place);
        SyntaxError(c.isPrint() ? QString(c) : QStringLiteral("U+%1").arg(c.unicode(), 4, 16, QLatin1Char('0')),
                    token.place);
    }

    const QString &text_;
    qsizetype at_ = 0;
    qsizetype lineStart_ = 0;
    int line_ = 1;
};

} // namespace

QList<Token> Lex(const QString &text)
{
    return Lexer(text).Run();
}

} // namespace embedded
