// SPDX-License-Identifier: Apache-2.0
#include "embedded/Parser.h"

#include <QRegularExpression>
#include <QSet>

namespace embedded {

namespace {

using namespace Qt::StringLiterals;
using Kind = Expr::Kind;

constexpr int kMaxNesting = 120;   // of the parser's own recursion
constexpr int kMaxDepth = 200;     // of an expression tree: a + b + c ... leans to the left
constexpr int kMaxUnionArms = 200; // SQLite stops at 500

const QSet<QString> &Reserved()
{
    static const QSet<QString> words = {
        u"select"_s,     u"from"_s,         u"where"_s,      u"group"_s,      u"order"_s,     u"having"_s,
        u"union"_s,      u"on"_s,           u"inner"_s,      u"left"_s,       u"right"_s,     u"full"_s,
        u"cross"_s,      u"outer"_s,        u"join"_s,       u"as"_s,         u"and"_s,       u"or"_s,
        u"not"_s,        u"in"_s,           u"like"_s,       u"between"_s,    u"is"_s,        u"null"_s,
        u"exists"_s,     u"case"_s,         u"when"_s,       u"then"_s,       u"else"_s,      u"end"_s,
        u"insert"_s,     u"into"_s,         u"values"_s,     u"update"_s,     u"set"_s,       u"delete"_s,
        u"create"_s,     u"alter"_s,        u"drop"_s,       u"table"_s,      u"view"_s,      u"procedure"_s,
        u"proc"_s,       u"function"_s,     u"index"_s,      u"begin"_s,      u"commit"_s,    u"rollback"_s,
        u"tran"_s,       u"transaction"_s,  u"declare"_s,    u"if"_s,         u"while"_s,     u"break"_s,
        u"continue"_s,   u"return"_s,       u"exec"_s,       u"execute"_s,    u"raiserror"_s, u"print"_s,
        u"open"_s,       u"fetch"_s,        u"close"_s,      u"deallocate"_s, u"cursor"_s,    u"merge"_s,
        u"pivot"_s,      u"unpivot"_s,      u"with"_s,       u"top"_s,        u"distinct"_s,  u"all"_s,
        u"any"_s,        u"some"_s,         u"by"_s,         u"asc"_s,        u"desc"_s,      u"percent"_s,
        u"primary"_s,    u"foreign"_s,      u"references"_s, u"unique"_s,     u"check"_s,     u"default"_s,
        u"constraint"_s, u"identity"_s,     u"convert"_s,    u"coalesce"_s,   u"nullif"_s,    u"for"_s,
        u"option"_s,     u"goto"_s,         u"waitfor"_s,    u"grant"_s,      u"revoke"_s,    u"deny"_s,
        u"truncate"_s,   u"trigger"_s,      u"use"_s,        u"backup"_s,     u"restore"_s,   u"except"_s,
        u"intersect"_s,  u"collate"_s,      u"escape"_s,     u"over"_s,       u"to"_s,        u"key"_s,
        u"clustered"_s,  u"nonclustered"_s, u"kill"_s,       u"bulk"_s};
    return words;
}

// Words that would read as an alias or a name but can only be meant as something else.
bool IsForeignWord(const Token &token)
{
    static const QSet<QString> words = {u"limit"_s,   u"offset"_s,  u"glob"_s,      u"regexp"_s,
                                        u"apply"_s,   u"natural"_s, u"using"_s,     u"isnull"_s,
                                        u"notnull"_s, u"window"_s,  u"returning"_s, u"match"_s};
    return token.kind == Token::Kind::Word && words.contains(token.lower);
}

bool IsForeignStatement(const QString &word)
{
    static const QSet<QString> words = {
        u"merge"_s,    u"with"_s,        u"grant"_s,    u"revoke"_s,    u"deny"_s,       u"goto"_s,    u"waitfor"_s,
        u"truncate"_s, u"use"_s,         u"backup"_s,   u"restore"_s,   u"dbcc"_s,       u"pragma"_s,  u"attach"_s,
        u"detach"_s,   u"vacuum"_s,      u"reindex"_s,  u"analyze"_s,   u"explain"_s,    u"replace"_s, u"savepoint"_s,
        u"release"_s,  u"bulk"_s,        u"kill"_s,     u"save"_s,      u"disable"_s,    u"enable"_s,  u"checkpoint"_s,
        u"shutdown"_s, u"reconfigure"_s, u"readtext"_s, u"writetext"_s, u"updatetext"_s, u"revert"_s,  u"receive"_s,
        u"send"_s,     u"values"_s};
    return words.contains(word);
}

bool IsForeignProcedure(const QString &name)
{
    return name.compare("sp_executesql"_L1, Qt::CaseInsensitive) == 0 || name.startsWith("xp_"_L1, Qt::CaseInsensitive);
}

class Parser
{
public:
    explicit Parser(const QString &text)
        : text_(text)
        , tokens_(Lex(text))
    {}

    std::shared_ptr<Program> Run()
    {
        auto program = std::make_shared<Program>();
        program->text = text_;
        while (Now().kind != Token::Kind::End) {
            if (AcceptSymbol(";"_L1))
                continue;
            alone_ = program->statements.empty();
            program->statements.push_back(ParseStatement());
        }
        for (auto used = used_.constBegin(); used != used_.constEnd(); ++used) {
            if (!declared_.contains(used.key()))
                program->undeclared.insert(used.key(), used.value());
        }
        return program;
    }

private:
    // ---- tokens

    const Token &Now(int ahead = 0) const { return tokens_[qMin(at_ + ahead, tokens_.size() - 1)]; }
    Token Take()
    {
        Token token = Now();
        if (at_ < tokens_.size() - 1)
            ++at_;
        return token;
    }
    bool Accept(QLatin1StringView keyword)
    {
        if (!Now().Is(keyword))
            return false;
        Take();
        return true;
    }
    bool AcceptSymbol(QLatin1StringView symbol)
    {
        if (!Now().IsSymbol(symbol))
            return false;
        Take();
        return true;
    }
    void Expect(QLatin1StringView keyword)
    {
        if (!Accept(keyword))
            Unexpected();
    }
    void ExpectSymbol(QLatin1StringView symbol)
    {
        if (!AcceptSymbol(symbol))
            Unexpected();
    }
    [[noreturn]] void Unexpected() const
    {
        const Token &token = Now();
        if (IsForeignWord(token) || (token.kind == Token::Kind::Word && IsForeignStatement(token.lower)))
            RefuseHere();
        SyntaxError(token.kind == Token::Kind::End ? u"end of text"_s : token.text, token.place);
    }
    [[noreturn]] void RefuseHere() const { Refuse(Now().text.toUpper(), Now().place); }

    bool AtName() const
    {
        const Token &token = Now();
        return token.kind == Token::Kind::Quoted ||
               (token.kind == Token::Kind::Word && !Reserved().contains(token.lower));
    }
    QString TakeName()
    {
        if (!AtName())
            Unexpected();
        return Take().text;
    }
    // [dbo.]name
    QString TakeObjectName()
    {
        QString name = TakeName();
        while (AcceptSymbol("."_L1)) {
            if (name.compare("dbo"_L1, Qt::CaseInsensitive) != 0)
                Refuse(name + u'.', Now(-2).place);
            name = TakeName();
        }
        return name;
    }
    QString TakeVariable(bool declares = false)
    {
        const Token token = Now();
        if (token.kind != Token::Kind::Variable)
            Unexpected();
        Take();
        if (!declares)
            Use(token);
        return token.text.toLower();
    }
    void Use(const Token &token)
    {
        if (!token.text.startsWith("@@"_L1) && !used_.contains(token.text.toLower()))
            used_.insert(token.text.toLower(), token.place);
    }
    void DeclareName(const QString &name, Place place)
    {
        if (declared_.contains(name))
            Fail(Error::Kind::Syntax, 134, u"The variable name '%1' has already been declared."_s.arg(name), place,
                 name);
        declared_.insert(name);
    }

    struct Nesting
    {
        explicit Nesting(Parser &owner)
            : parser(owner)
        {
            if (++parser.nesting_ > kMaxNesting)
                Refuse(u"Nesting this deep"_s, parser.Now().place);
        }
        ~Nesting() { --parser.nesting_; }
        Nesting(const Nesting &) = delete;
        Nesting &operator=(const Nesting &) = delete;
        Parser &parser;
    };

    // ---- expressions

    ExprPtr Make(Kind kind, Place place, const QString &text = {})
    {
        auto expr = std::make_unique<Expr>();
        expr->kind = kind;
        expr->place = place;
        expr->text = text;
        return expr;
    }
    void Add(const ExprPtr &parent, ExprPtr child)
    {
        if (child) {
            parent->depth = qMax(parent->depth, child->depth + 1);
            if (parent->depth > kMaxDepth)
                Refuse(u"Nesting this deep"_s, child->place);
        }
        parent->args.push_back(std::move(child));
    }
    static void NeedScalar(const Expr &expr)
    {
        if (expr.IsPredicate() || expr.kind == Kind::Star)
            SyntaxError(expr.kind == Kind::Star ? u"*"_s : u"a condition where a value is expected"_s, expr.place);
    }
    static void NeedPredicate(const Expr &expr)
    {
        if (!expr.IsPredicate())
            Fail(Error::Kind::Syntax, 4145,
                 u"An expression of non-boolean type stands where a condition is expected (line %1, column %2)."_s
                     .arg(expr.place.line)
                     .arg(expr.place.column),
                 expr.place, expr.text);
    }

    ExprPtr ParseScalar()
    {
        ExprPtr expr = ParseAdditive();
        NeedScalar(*expr);
        return expr;
    }
    ExprPtr ParseCondition()
    {
        ExprPtr expr = ParseOr();
        NeedPredicate(*expr);
        return expr;
    }

    ExprPtr ParseOr() { return ParseChain(Kind::Or, "or"_L1, &Parser::ParseAnd); }
    ExprPtr ParseAnd() { return ParseChain(Kind::And, "and"_L1, &Parser::ParseNot); }
    ExprPtr ParseChain(Kind kind, QLatin1StringView keyword, ExprPtr (Parser::*operand)())
    {
        ExprPtr first = (this->*operand)();
        if (!Now().Is(keyword))
            return first;
        NeedPredicate(*first);
        ExprPtr chain = Make(kind, first->place, keyword);
        Add(chain, std::move(first));
        while (Accept(keyword)) {
            ExprPtr next = (this->*operand)();
            NeedPredicate(*next);
            Add(chain, std::move(next));
        }
        return chain;
    }
    ExprPtr ParseNot()
    {
        if (!Now().Is("not"_L1))
            return ParsePredicate();
        const Nesting nesting(*this);
        ExprPtr result = Make(Kind::Not, Take().place);
        ExprPtr operand = ParseNot();
        NeedPredicate(*operand);
        Add(result, std::move(operand));
        return result;
    }

    ExprPtr ParsePredicate()
    {
        const Nesting nesting(*this);
        const Token start = Now();
        if (Accept("exists"_L1)) {
            ExprPtr exists = Make(Kind::Exists, start.place);
            ExpectSymbol("("_L1);
            exists->query = ParseQueryPtr();
            ExpectSymbol(")"_L1);
            return exists;
        }
        ExprPtr left = ParseAdditive();
        const Token op = Now();
        if (op.kind == Token::Kind::Symbol && (op.text == "="_L1 || op.text == "<>"_L1 || op.text == "<"_L1 ||
                                               op.text == ">"_L1 || op.text == "<="_L1 || op.text == ">="_L1)) {
            NeedScalar(*left);
            Take();
            if (Now().Is("all"_L1) || Now().Is("any"_L1) || Now().Is("some"_L1))
                RefuseHere();
            ExprPtr result = Make(Kind::Compare, op.place, op.text);
            Add(result, std::move(left));
            Add(result, ParseScalar());
            return result;
        }
        if (Accept("is"_L1)) {
            NeedScalar(*left);
            ExprPtr result = Make(Kind::IsNull, op.place);
            result->negated = Accept("not"_L1);
            Expect("null"_L1);
            Add(result, std::move(left));
            return result;
        }
        const bool negated = Now().Is("not"_L1);
        const Token &word = Now(negated ? 1 : 0);
        if (word.Is("like"_L1) || word.Is("between"_L1) || word.Is("in"_L1)) {
            NeedScalar(*left);
            if (negated)
                Take();
            const QString keyword = Take().lower;
            ExprPtr result = keyword == "like"_L1      ? ParseLike(op.place, std::move(left))
                             : keyword == "between"_L1 ? ParseBetween(op.place, std::move(left))
                                                       : ParseIn(op.place, std::move(left));
            result->negated = negated;
            return result;
        }
        if (IsForeignWord(op) || IsForeignWord(word))
            RefuseHere();
        return left;
    }
    ExprPtr ParseLike(Place place, ExprPtr left)
    {
        ExprPtr result = Make(Kind::Like, place);
        Add(result, std::move(left));
        Add(result, ParseScalar());
        if (Accept("escape"_L1))
            Add(result, ParseScalar());
        return result;
    }
    ExprPtr ParseBetween(Place place, ExprPtr left)
    {
        ExprPtr result = Make(Kind::Between, place);
        Add(result, std::move(left));
        Add(result, ParseScalar());
        Expect("and"_L1);
        Add(result, ParseScalar());
        return result;
    }
    ExprPtr ParseIn(Place place, ExprPtr left)
    {
        ExpectSymbol("("_L1);
        const bool query = Now().Is("select"_L1);
        ExprPtr result = Make(query ? Kind::InQuery : Kind::InList, place);
        Add(result, std::move(left));
        if (query) {
            result->query = ParseQueryPtr();
        } else {
            do
                Add(result, ParseScalar());
            while (AcceptSymbol(","_L1));
        }
        ExpectSymbol(")"_L1);
        return result;
    }

    bool AtOperator(QLatin1StringView symbols) const
    {
        return Now().kind == Token::Kind::Symbol && Now().text.size() == 1 && symbols.contains(Now().text[0]);
    }
    ExprPtr ParseAdditive() { return ParseBinary("+-&|"_L1, &Parser::ParseMultiplicative); }
    ExprPtr ParseMultiplicative() { return ParseBinary("*/%"_L1, &Parser::ParseUnary); }
    ExprPtr ParseBinary(QLatin1StringView operators, ExprPtr (Parser::*operand)())
    {
        ExprPtr left = (this->*operand)();
        while (AtOperator(operators)) {
            NeedScalar(*left);
            const Token op = Take();
            ExprPtr result = Make(Kind::Binary, op.place, op.text);
            Add(result, std::move(left));
            Add(result, (this->*operand)());
            NeedScalar(*result->args[1]);
            left = std::move(result);
        }
        return left;
    }
    ExprPtr ParseUnary()
    {
        const Nesting nesting(*this);
        if (AcceptSymbol("+"_L1))
            return ParseUnary();
        const bool negate = Now().IsSymbol("-"_L1);
        if (!negate && !Now().IsSymbol("~"_L1))
            return ParsePrimary();
        ExprPtr result = Make(negate ? Kind::Negate : Kind::Complement, Take().place);
        ExprPtr operand = ParseUnary();
        NeedScalar(*operand);
        if (negate && (operand->kind == Kind::Integer || operand->kind == Kind::Decimal) &&
            !operand->text.startsWith(u'-')) {
            operand->text.prepend(u'-');
            operand->place = result->place;
            return operand;
        }
        Add(result, std::move(operand));
        return result;
    }

    ExprPtr ParsePrimary()
    {
        const Token token = Now();
        switch (token.kind) {
        case Token::Kind::Integer:
            Take();
            return Make(Kind::Integer, token.place, token.text);
        case Token::Kind::Decimal:
            Take();
            return Make(Kind::Decimal, token.place, token.text);
        case Token::Kind::String:
            Take();
            return Make(Kind::String, token.place, token.text);
        case Token::Kind::Variable:
            return Make(Kind::Variable, token.place, TakeVariable());
        case Token::Kind::Symbol:
            if (AcceptSymbol("("_L1))
                return ParseParenthesis(token.place);
            Unexpected();
        case Token::Kind::End:
            Unexpected();
        case Token::Kind::Word:
        case Token::Kind::Quoted:
            break;
        }
        if (token.Is("null"_L1)) {
            Take();
            return Make(Kind::Null, token.place);
        }
        if (token.Is("case"_L1))
            return ParseCase();
        if (token.Is("cast"_L1) && Now(1).IsSymbol("("_L1))
            return ParseCast();
        if (token.Is("convert"_L1))
            return ParseConvert();
        if ((token.Is("left"_L1) || token.Is("right"_L1) || token.Is("coalesce"_L1) || token.Is("nullif"_L1) ||
             token.Is("isnull"_L1) || token.Is("replace"_L1)) &&
            Now(1).IsSymbol("("_L1)) {
            Take();
            return ParseCall(token.place, {}, token.text);
        }
        if (!AtName() || IsForeignWord(token))
            Unexpected();
        return ParseNameOrCall();
    }

    ExprPtr ParseParenthesis(Place place)
    {
        if (Now().Is("select"_L1)) {
            ExprPtr result = Make(Kind::Query, place);
            result->query = ParseQueryPtr();
            ExpectSymbol(")"_L1);
            return result;
        }
        ExprPtr inner = ParseOr();
        ExpectSymbol(")"_L1);
        return inner;
    }

    ExprPtr ParseNameOrCall()
    {
        const Place place = Now().place;
        QString name = TakeName();
        QString qualifier;
        while (AcceptSymbol("."_L1)) {
            // dbo.table.column: the schema is always the same one and says nothing
            if (!qualifier.isEmpty() && qualifier.compare("dbo"_L1, Qt::CaseInsensitive) != 0)
                Refuse(qualifier + u'.', place);
            qualifier = name;
            name = TakeName();
        }
        if (Now().IsSymbol("("_L1))
            return ParseCall(place, qualifier, name);
        ExprPtr result = Make(Kind::Name, place, name);
        result->qualifier = qualifier;
        return result;
    }

    ExprPtr ParseCall(Place place, const QString &qualifier, const QString &name)
    {
        ExprPtr call = Make(Kind::Call, place, name);
        call->qualifier = qualifier;
        ExpectSymbol("("_L1);
        if (!AcceptSymbol(")"_L1)) {
            if (!Accept("all"_L1))
                call->distinct = Accept("distinct"_L1);
            do {
                if (Now().IsSymbol("*"_L1))
                    Add(call, Make(Kind::Star, Take().place));
                else if (!qualifier.isEmpty() && Accept("default"_L1))
                    Add(call, nullptr);
                else
                    Add(call, ParseScalar());
            } while (AcceptSymbol(","_L1));
            ExpectSymbol(")"_L1);
        }
        if (call->args.size() > 100)
            Refuse(u"A list of arguments this long"_s, place);
        for (const ExprPtr &arg : call->args) {
            if (arg && arg->kind == Kind::Star &&
                (call->args.size() > 1 || name.compare("count"_L1, Qt::CaseInsensitive) != 0 || !qualifier.isEmpty()))
                SyntaxError(u"*"_s, arg->place);
        }
        if (Accept("over"_L1)) {
            call->over = std::make_unique<Window>();
            ExpectSymbol("("_L1);
            if (Accept("partition"_L1)) {
                Expect("by"_L1);
                do
                    call->over->partition.push_back(ParseScalar());
                while (AcceptSymbol(","_L1));
            }
            call->over->order = ParseOrderBy();
            ExpectSymbol(")"_L1);
        }
        return call;
    }

    ExprPtr ParseCase()
    {
        ExprPtr result = Make(Kind::Case, Take().place);
        const bool simple = !Now().Is("when"_L1);
        Add(result, simple ? ParseScalar() : nullptr);
        if (!Now().Is("when"_L1))
            Unexpected();
        while (Accept("when"_L1)) {
            Add(result, simple ? ParseScalar() : ParseCondition());
            Expect("then"_L1);
            Add(result, ParseScalar());
        }
        Add(result, Accept("else"_L1) ? ParseScalar() : nullptr);
        Expect("end"_L1);
        return result;
    }

    ExprPtr ParseCast()
    {
        ExprPtr result = Make(Kind::Cast, Take().place);
        ExpectSymbol("("_L1);
        Add(result, ParseScalar());
        Expect("as"_L1);
        result->type = ParseType(true);
        ExpectSymbol(")"_L1);
        return result;
    }
    ExprPtr ParseConvert()
    {
        ExprPtr result = Make(Kind::Cast, Take().place);
        ExpectSymbol("("_L1);
        result->type = ParseType(true);
        ExpectSymbol(","_L1);
        Add(result, ParseScalar());
        if (AcceptSymbol(","_L1)) {
            if (Now().kind != Token::Kind::Integer)
                Unexpected();
            result->style = Take().text.toInt();
        }
        ExpectSymbol(")"_L1);
        return result;
    }

    Type ParseType(bool cast = false)
    {
        const Token start = Now();
        QString text = TakeName().toLower();
        if (text == "character"_L1 || text == "dec"_L1 || text == "integer"_L1 || text == "double"_L1)
            Refuse(text, start.place); // synonyms: one spelling is enough
        if (AcceptSymbol("("_L1)) {
            QString arguments = Now().Is("max"_L1) ? Take().lower : TakeInteger();
            if (AcceptSymbol(","_L1))
                arguments += u", "_s + TakeInteger();
            ExpectSymbol(")"_L1);
            text += u'(' + arguments + u')';
        }
        Type type = TypeFromText(text);
        if (type.IsUnknown())
            Refuse(start.text, start.place);
        if (type.IsText() && !text.contains(u'(') && text != "text"_L1 && text != "ntext"_L1)
            type.length = cast ? 30 : 1; // what a length left out means
        if (type.IsText() && type.length >= 0 && !text.contains(u'('))
            type.declared += u"(%1)"_s.arg(type.length);
        return type;
    }
    QString TakeInteger()
    {
        const Token token = Now();
        if (token.kind != Token::Kind::Integer || token.text.size() > 9)
            Unexpected();
        return Take().text;
    }

    // ---- queries

    std::unique_ptr<Query> ParseQueryPtr()
    {
        auto query = std::make_unique<Query>();
        ParseQuery(*query);
        return query;
    }
    void ParseQuery(Query &query)
    {
        const Nesting nesting(*this);
        query.place = Now().place;
        for (;;) {
            query.arms.push_back(ParseCore());
            if (Now().Is("except"_L1) || Now().Is("intersect"_L1))
                RefuseHere();
            if (!Accept("union"_L1))
                break;
            query.all.push_back(Accept("all"_L1));
            if (query.all.size() > kMaxUnionArms)
                Refuse(u"A UNION this long"_s, Now().place);
        }
        query.orderBy = ParseOrderBy();
        if (Now().Is("option"_L1) || Now().Is("for"_L1) || IsForeignWord(Now()))
            RefuseHere();
    }

    std::vector<OrderItem> ParseOrderBy()
    {
        std::vector<OrderItem> items;
        if (!Accept("order"_L1))
            return items;
        Expect("by"_L1);
        do {
            OrderItem item;
            item.expr = ParseScalar();
            item.descending = Accept("desc"_L1);
            if (!item.descending)
                Accept("asc"_L1);
            items.push_back(std::move(item));
        } while (AcceptSymbol(","_L1));
        return items;
    }

    SelectCore ParseCore()
    {
        SelectCore core;
        Expect("select"_L1);
        if (!Accept("all"_L1))
            core.distinct = Accept("distinct"_L1);
        if (Accept("top"_L1)) {
            if (AcceptSymbol("("_L1)) {
                core.top = ParseScalar();
                ExpectSymbol(")"_L1);
            } else {
                const Place place = Now().place;
                core.top = Make(Kind::Integer, place, TakeInteger());
            }
            if (Now().Is("percent"_L1) || Now().Is("with"_L1))
                RefuseHere();
        }
        do
            core.items.push_back(ParseItem());
        while (AcceptSymbol(","_L1));
        if (Now().Is("into"_L1))
            RefuseHere();
        if (Accept("from"_L1))
            core.from = ParseFrom();
        if (Accept("where"_L1))
            core.where = ParseCondition();
        if (Accept("group"_L1)) {
            Expect("by"_L1);
            do
                core.groupBy.push_back(ParseScalar());
            while (AcceptSymbol(","_L1));
        }
        if (Accept("having"_L1))
            core.having = ParseCondition();
        return core;
    }

    SelectItem ParseItem()
    {
        SelectItem item;
        item.place = Now().place;
        if (AcceptSymbol("*"_L1)) {
            item.star = true;
            return item;
        }
        if (AtName() && Now(1).IsSymbol("."_L1)) {
            const int ahead = Now(3).IsSymbol("."_L1) ? 4 : 2; // dbo.t.* as well as t.*
            if (Now(ahead).IsSymbol("*"_L1)) {
                item.star = true;
                item.alias = Now(ahead - 2).text;
                at_ += ahead + 1;
                return item;
            }
        }
        if (Now().kind == Token::Kind::Variable && Now(1).IsSymbol("="_L1) && !Now().colon) {
            item.assignedTo = TakeVariable();
            Take();
        } else if (AtName() && Now(1).IsSymbol("="_L1)) {
            item.alias = TakeName();
            Take();
        }
        item.expr = ParseScalar();
        if (item.alias.isEmpty() && item.assignedTo.isEmpty()) {
            if (Accept("as"_L1))
                item.alias = Now().kind == Token::Kind::String ? Take().text : TakeName();
            else if (AtName() && !IsForeignWord(Now()))
                item.alias = TakeName();
        }
        return item;
    }

    std::vector<std::unique_ptr<TableRef>> ParseFrom()
    {
        std::vector<std::unique_ptr<TableRef>> list;
        do
            list.push_back(ParseJoins());
        while (AcceptSymbol(","_L1));
        return list;
    }

    std::unique_ptr<TableRef> ParseJoins()
    {
        const Nesting nesting(*this);
        std::unique_ptr<TableRef> left = ParseTable();
        for (int joins = 0;; ++joins) {
            const Token start = Now();
            auto join = std::make_unique<TableRef>();
            join->kind = TableRef::Kind::Join;
            join->place = start.place;
            if (Accept("join"_L1)) {
                join->join = TableRef::Join::Inner;
            } else if (Accept("inner"_L1)) {
                Expect("join"_L1);
                join->join = TableRef::Join::Inner;
            } else if (Now().Is("left"_L1) || Now().Is("right"_L1) || Now().Is("full"_L1)) {
                join->join = Now().Is("left"_L1)    ? TableRef::Join::Left
                             : Now().Is("right"_L1) ? TableRef::Join::Right
                                                    : TableRef::Join::Full;
                Take();
                Accept("outer"_L1);
                Expect("join"_L1);
            } else if (Now().Is("cross"_L1)) {
                if (Now(1).Is("apply"_L1))
                    Refuse(u"CROSS APPLY"_s, start.place);
                Take();
                Expect("join"_L1);
            } else {
                if (start.Is("outer"_L1) || start.Is("pivot"_L1) || start.Is("unpivot"_L1) || start.Is("with"_L1) ||
                    IsForeignWord(start))
                    RefuseHere();
                return left;
            }
            if (joins >= 60) // SQLite joins 64 tables
                Refuse(u"A join this long"_s, start.place);
            join->left = std::move(left);
            join->right = ParseTable();
            if (join->join != TableRef::Join::Cross) {
                // a JOIN (b JOIN c ON ...) ON ... written without parentheses is too obscure to be worth reading
                Expect("on"_L1);
                join->on = ParseCondition();
            }
            left = std::move(join);
        }
    }

    std::unique_ptr<TableRef> ParseTable()
    {
        auto table = std::make_unique<TableRef>();
        table->place = Now().place;
        if (AcceptSymbol("("_L1)) {
            if (!Now().Is("select"_L1)) {
                std::unique_ptr<TableRef> inner = ParseJoins();
                ExpectSymbol(")"_L1);
                return inner;
            }
            table->kind = TableRef::Kind::Derived;
            table->query = ParseQueryPtr();
            ExpectSymbol(")"_L1);
        } else if (Now().kind == Token::Kind::Variable) {
            table->name = TakeVariable();
        } else {
            table->name = TakeObjectName();
            if (AcceptSymbol("("_L1)) {
                table->kind = TableRef::Kind::Function;
                if (!AcceptSymbol(")"_L1)) {
                    do
                        table->args.push_back(Accept("default"_L1) ? nullptr : ParseScalar());
                    while (AcceptSymbol(","_L1));
                    ExpectSymbol(")"_L1);
                }
            }
        }
        if (Accept("as"_L1) || (AtName() && !IsForeignWord(Now())))
            table->alias = TakeName();
        if (table->kind == TableRef::Kind::Derived && table->alias.isEmpty())
            Unexpected();
        if (Now().Is("with"_L1))
            RefuseHere();
        if (Now().IsSymbol("("_L1) && table->kind == TableRef::Kind::Derived)
            Refuse(u"A list of column names here"_s, Now().place);
        return table;
    }

    // ---- statements

    template <typename T> std::unique_ptr<T> Begin(int keywords = 1)
    {
        auto statement = std::make_unique<T>();
        statement->place = Now().place;
        for (int i = 0; i < keywords; ++i)
            Take();
        return statement;
    }

    StatementPtr ParseStatement()
    {
        const Nesting nesting(*this);
        const Token &token = Now();
        if (token.kind != Token::Kind::Word)
            Unexpected();
        const QString &word = token.lower;
        if (word == "select"_L1)
            return ParseSelect();
        if (word == "insert"_L1)
            return ParseInsert();
        if (word == "update"_L1)
            return ParseUpdate();
        if (word == "delete"_L1)
            return ParseDelete();
        if (word == "create"_L1)
            return ParseCreate();
        if (word == "alter"_L1)
            return ParseAlter();
        if (word == "drop"_L1)
            return ParseDrop();
        if (word == "declare"_L1)
            return ParseDeclare();
        if (word == "set"_L1)
            return ParseSet();
        if (word == "if"_L1)
            return ParseIf();
        if (word == "while"_L1) {
            auto loop = Begin<WhileStatement>();
            loop->condition = ParseCondition();
            loop->body = ParseStatement();
            return loop;
        }
        if (word == "begin"_L1)
            return ParseBegin();
        if (word == "break"_L1)
            return Begin<BreakStatement>();
        if (word == "continue"_L1)
            return Begin<ContinueStatement>();
        if (word == "return"_L1) {
            auto result = Begin<ReturnStatement>();
            if (AtValue())
                result->value = ParseScalar();
            return result;
        }
        if (word == "exec"_L1 || word == "execute"_L1)
            return ParseExec();
        if (word == "raiserror"_L1)
            return ParseRaisError();
        if (word == "throw"_L1) {
            auto result = Begin<ThrowStatement>();
            if (AtValue()) {
                do
                    result->arguments.push_back(ParseScalar());
                while (AcceptSymbol(","_L1));
                if (result->arguments.size() != 3)
                    Unexpected();
            }
            return result;
        }
        if (word == "print"_L1) {
            auto result = Begin<PrintStatement>();
            ParseScalar(); // nobody listens
            return result;
        }
        if (word == "commit"_L1 || word == "rollback"_L1) {
            auto result = Begin<TransactionStatement>();
            result->action =
                word == "commit"_L1 ? TransactionStatement::Action::Commit : TransactionStatement::Action::Rollback;
            if (Accept("tran"_L1) || Accept("transaction"_L1))
                TransactionName();
            else
                Accept("work"_L1);
            return result;
        }
        if (word == "open"_L1 || word == "fetch"_L1 || word == "close"_L1 || word == "deallocate"_L1)
            return ParseCursor();
        if (IsForeignStatement(word))
            RefuseHere();
        Unexpected();
    }

    // A name would ask for save points when it is rolled back; nothing here needs one.
    void TransactionName()
    {
        if (Now().kind == Token::Kind::Variable || (AtName() && !StartsStatement(Now())))
            Refuse(u"A transaction's name"_s, Now().place);
    }
    static bool StartsStatement(const Token &token) { return token.Is("throw"_L1) || IsForeignStatement(token.lower); }
    // Whether an expression follows RETURN or THROW.
    bool AtValue() const
    {
        const Token &token = Now();
        switch (token.kind) {
        case Token::Kind::End:
            return false;
        case Token::Kind::Symbol:
            return token.text == "("_L1 || token.text == "-"_L1 || token.text == "+"_L1 || token.text == "~"_L1;
        case Token::Kind::Word:
            if (token.lower == "case"_L1 || token.lower == "null"_L1 || token.lower == "convert"_L1 ||
                token.lower == "coalesce"_L1 || token.lower == "nullif"_L1 ||
                ((token.lower == "left"_L1 || token.lower == "right"_L1) && Now(1).IsSymbol("("_L1)))
                return true;
            return !Reserved().contains(token.lower) && !StartsStatement(token);
        default:
            return true;
        }
    }

    StatementPtr ParseSelect()
    {
        auto statement = Begin<SelectStatement>(0);
        ParseQuery(statement->query);
        const SelectCore &core = statement->query.arms.front();
        for (const SelectItem &item : core.items)
            statement->assigns |= !item.assignedTo.isEmpty();
        for (const SelectItem &item : core.items) {
            if (statement->assigns && (item.assignedTo.isEmpty() || statement->query.arms.size() > 1))
                Fail(Error::Kind::Syntax, 141,
                     u"A SELECT statement that assigns a value to a variable must not be combined with data-retrieval "
                     "operations."_s,
                     item.place);
        }
        return statement;
    }

    StatementPtr ParseInsert()
    {
        auto statement = Begin<InsertStatement>();
        if (Now().Is("top"_L1))
            RefuseHere();
        Accept("into"_L1);
        statement->table = ParseTarget();
        if (Now().IsSymbol("("_L1)) {
            Take();
            do
                statement->columns.append(TakeName());
            while (AcceptSymbol(","_L1));
            ExpectSymbol(")"_L1);
        }
        if (Now().Is("output"_L1) || Now().Is("exec"_L1) || Now().Is("execute"_L1))
            RefuseHere();
        if (Accept("default"_L1)) {
            Expect("values"_L1);
            return statement;
        }
        if (Now().Is("select"_L1)) {
            statement->query = ParseQueryPtr();
            return statement;
        }
        Expect("values"_L1);
        do {
            std::vector<ExprPtr> row;
            ExpectSymbol("("_L1);
            do
                row.push_back(Accept("default"_L1) ? nullptr : ParseScalar());
            while (AcceptSymbol(","_L1));
            ExpectSymbol(")"_L1);
            statement->rows.push_back(std::move(row));
        } while (AcceptSymbol(","_L1));
        return statement;
    }

    QString ParseTarget() { return Now().kind == Token::Kind::Variable ? TakeVariable() : TakeObjectName(); }

    StatementPtr ParseUpdate()
    {
        auto statement = Begin<UpdateStatement>();
        if (Now().Is("top"_L1))
            RefuseHere();
        statement->target = ParseTarget();
        Expect("set"_L1);
        do {
            Assignment assignment;
            assignment.place = Now().place;
            if (Now().kind == Token::Kind::Variable)
                Refuse(Now().text, Now().place);
            assignment.column = TakeName();
            if (AcceptSymbol("."_L1)) // alias.column
                assignment.column = TakeName();
            ExpectSymbol("="_L1);
            if (!Accept("default"_L1))
                assignment.value = ParseScalar();
            statement->assignments.push_back(std::move(assignment));
        } while (AcceptSymbol(","_L1));
        if (Now().Is("output"_L1))
            RefuseHere();
        if (Accept("from"_L1))
            statement->from = ParseFrom();
        statement->where = ParseDmlWhere();
        return statement;
    }

    StatementPtr ParseDelete()
    {
        auto statement = Begin<DeleteStatement>();
        if (Now().Is("top"_L1))
            RefuseHere();
        Accept("from"_L1);
        statement->target = ParseTarget();
        if (Now().Is("output"_L1))
            RefuseHere();
        if (Accept("from"_L1))
            statement->from = ParseFrom();
        statement->where = ParseDmlWhere();
        return statement;
    }

    ExprPtr ParseDmlWhere()
    {
        if (!Accept("where"_L1)) {
            if (IsForeignWord(Now()) || Now().Is("option"_L1))
                RefuseHere();
            return nullptr;
        }
        if (Now().Is("current"_L1) && Now(1).Is("of"_L1))
            Refuse(u"WHERE CURRENT OF"_s, Now().place);
        ExprPtr where = ParseCondition();
        if (IsForeignWord(Now()) || Now().Is("option"_L1))
            RefuseHere();
        return where;
    }

    // ---- definitions

    StatementPtr ParseCreate()
    {
        const Token &what = Now(1);
        if (what.Is("table"_L1)) {
            auto statement = Begin<CreateTableStatement>(2);
            statement->table = TakeObjectName();
            ParseTableBody(*statement);
            return statement;
        }
        if (what.Is("view"_L1) || what.Is("function"_L1) || what.Is("procedure"_L1) || what.Is("proc"_L1)) {
            if (!alone_ || nesting_ > 1)
                Fail(Error::Kind::Syntax, 111,
                     u"'CREATE %1' must be the only statement in its batch (line %2, column %3)."_s
                         .arg(what.text.toUpper())
                         .arg(Now().place.line)
                         .arg(Now().place.column),
                     Now().place, what.text);
            return what.Is("view"_L1) ? ParseView() : what.Is("function"_L1) ? ParseFunction() : ParseProcedure();
        }
        if (what.Is("index"_L1) || what.Is("unique"_L1) || what.Is("clustered"_L1) || what.Is("nonclustered"_L1))
            return ParseIndex();
        Refuse(u"CREATE "_s + what.text.toUpper(), Now().place);
    }

    void ParseTableBody(CreateTableStatement &statement)
    {
        ExpectSymbol("("_L1);
        do {
            if (Now().IsSymbol(")"_L1) && !statement.columns.empty())
                break; // a comma too many is accepted by the server
            if (AtConstraint())
                statement.constraints.push_back(ParseConstraint());
            else
                statement.columns.push_back(ParseColumn());
        } while (AcceptSymbol(","_L1));
        ExpectSymbol(")"_L1);
        if (Now().Is("on"_L1)) // ON [PRIMARY]: there is one file group
            RefuseHere();
        if (statement.columns.size() > 1000)
            Refuse(u"A table this wide"_s, statement.place);
    }

    bool AtConstraint() const
    {
        const Token &token = Now();
        return token.Is("constraint"_L1) || token.Is("primary"_L1) || token.Is("unique"_L1) || token.Is("check"_L1) ||
               token.Is("foreign"_L1);
    }

    TableConstraint ParseConstraint()
    {
        TableConstraint constraint;
        constraint.place = Now().place;
        if (Accept("constraint"_L1))
            constraint.name = TakeName();
        if (Accept("primary"_L1)) {
            Expect("key"_L1);
            constraint.kind = TableConstraint::Kind::PrimaryKey;
            constraint.columns = ParseKeyColumns();
        } else if (Accept("unique"_L1)) {
            constraint.kind = TableConstraint::Kind::Unique;
            constraint.columns = ParseKeyColumns();
        } else if (Accept("check"_L1)) {
            constraint.kind = TableConstraint::Kind::Check;
            constraint.check = ParseCheck();
        } else if (Accept("foreign"_L1)) {
            Expect("key"_L1);
            constraint.kind = TableConstraint::Kind::ForeignKey;
            constraint.columns = ParseColumnList();
            constraint.reference = ParseReference();
        } else {
            Unexpected();
        }
        return constraint;
    }

    ExprPtr ParseCheck()
    {
        ExpectSymbol("("_L1);
        ExprPtr check = ParseCondition();
        ExpectSymbol(")"_L1);
        return check;
    }

    QStringList ParseColumnList()
    {
        QStringList columns;
        ExpectSymbol("("_L1);
        do
            columns.append(TakeName());
        while (AcceptSymbol(","_L1));
        ExpectSymbol(")"_L1);
        return columns;
    }
    QStringList ParseKeyColumns()
    {
        SkipClustered();
        QStringList columns;
        ExpectSymbol("("_L1);
        do {
            columns.append(TakeName());
            if (!Accept("asc"_L1))
                Accept("desc"_L1);
        } while (AcceptSymbol(","_L1));
        ExpectSymbol(")"_L1);
        return columns;
    }
    void SkipClustered()
    {
        if (!Accept("clustered"_L1))
            Accept("nonclustered"_L1);
    }

    ReferenceClause ParseReference()
    {
        ReferenceClause reference;
        Expect("references"_L1);
        reference.table = TakeObjectName();
        if (Now().IsSymbol("("_L1))
            reference.columns = ParseColumnList();
        while (Now().Is("on"_L1) && (Now(1).Is("delete"_L1) || Now(1).Is("update"_L1))) {
            Take();
            reference.actions += u" ON "_s + Take().text.toUpper();
            if (Accept("cascade"_L1)) {
                reference.actions += u" CASCADE"_s;
            } else if (Accept("no"_L1)) {
                Expect("action"_L1);
                reference.actions += u" NO ACTION"_s;
            } else {
                Expect("set"_L1);
                const bool null = Accept("null"_L1);
                if (!null)
                    Expect("default"_L1);
                reference.actions += null ? u" SET NULL"_s : u" SET DEFAULT"_s;
            }
        }
        return reference;
    }

    ColumnDefinition ParseColumn()
    {
        ColumnDefinition column;
        column.place = Now().place;
        column.name = TakeName();
        if (Now().Is("as"_L1))
            Refuse(u"A computed column"_s, Now().place);
        column.type = ParseType();
        for (;;) {
            const Token token = Now();
            TableConstraint constraint;
            constraint.place = token.place;
            if (Accept("constraint"_L1))
                constraint.name = TakeName();
            if (Accept("identity"_L1)) {
                ParseIdentity(column);
            } else if (Accept("null"_L1)) {
                column.notNull = false;
            } else if (Accept("not"_L1)) {
                Expect("null"_L1);
                column.notNull = true;
            } else if (Accept("default"_L1)) {
                column.defaultValue = ParseUnary();
                NeedScalar(*column.defaultValue);
            } else if (Accept("primary"_L1)) {
                Expect("key"_L1);
                SkipClustered();
                constraint.kind = TableConstraint::Kind::PrimaryKey;
                constraint.columns = {column.name};
                column.constraints.push_back(std::move(constraint));
            } else if (Accept("unique"_L1)) {
                SkipClustered();
                constraint.kind = TableConstraint::Kind::Unique;
                constraint.columns = {column.name};
                column.constraints.push_back(std::move(constraint));
            } else if (Accept("check"_L1)) {
                constraint.kind = TableConstraint::Kind::Check;
                constraint.check = ParseCheck();
                column.constraints.push_back(std::move(constraint));
            } else if (Now().Is("references"_L1) || Now().Is("foreign"_L1)) {
                if (Accept("foreign"_L1))
                    Expect("key"_L1);
                constraint.kind = TableConstraint::Kind::ForeignKey;
                constraint.columns = {column.name};
                constraint.reference = ParseReference();
                column.constraints.push_back(std::move(constraint));
            } else if (Now().Is("collate"_L1) || Now().Is("rowguidcol"_L1) || Now().Is("sparse"_L1)) {
                RefuseHere();
            } else if (!constraint.name.isEmpty()) {
                Unexpected();
            } else {
                return column;
            }
        }
    }
    void ParseIdentity(ColumnDefinition &column)
    {
        column.identity = true;
        if (!AcceptSymbol("("_L1))
            return;
        const bool negative = AcceptSymbol("-"_L1);
        column.seed = TakeInteger().toLongLong() * (negative ? -1 : 1);
        ExpectSymbol(","_L1);
        if (Now().text != "1"_L1)
            Refuse(u"An identity increment other than 1"_s, Now().place);
        Take();
        ExpectSymbol(")"_L1);
    }

    StatementPtr ParseAlter()
    {
        if (!Now(1).Is("table"_L1))
            Refuse(u"ALTER "_s + Now(1).text.toUpper(), Now().place);
        auto statement = Begin<AlterTableStatement>(2);
        statement->table = TakeObjectName();
        if (Now().Is("with"_L1)) { // WITH CHECK / NOCHECK ADD ...
            if (!Now(1).Is("check"_L1))
                Refuse(u"WITH "_s + Now(1).text.toUpper(), Now().place);
            Take();
            Take();
        }
        if (!Accept("add"_L1))
            Refuse(u"ALTER TABLE ... "_s + Now().text.toUpper(), Now().place);
        do {
            if (AtConstraint())
                statement->constraints.push_back(ParseConstraint());
            else
                statement->columns.push_back(ParseColumn());
        } while (AcceptSymbol(","_L1));
        return statement;
    }

    StatementPtr ParseIndex()
    {
        auto statement = Begin<CreateIndexStatement>();
        statement->unique = Accept("unique"_L1);
        SkipClustered();
        Expect("index"_L1);
        statement->name = TakeName();
        Expect("on"_L1);
        statement->table = TakeObjectName();
        ExpectSymbol("("_L1);
        do {
            const QString column = TakeName();
            const bool descending = Accept("desc"_L1);
            if (!descending)
                Accept("asc"_L1);
            statement->columns.emplace_back(column, descending);
        } while (AcceptSymbol(","_L1));
        ExpectSymbol(")"_L1);
        if (Now().Is("include"_L1) || Now().Is("where"_L1) || Now().Is("with"_L1) || Now().Is("on"_L1))
            RefuseHere();
        return statement;
    }

    StatementPtr ParseDrop()
    {
        auto statement = Begin<DropStatement>();
        using Object = DropStatement::Object;
        if (Accept("table"_L1))
            statement->object = Object::Table;
        else if (Accept("view"_L1))
            statement->object = Object::View;
        else if (Accept("procedure"_L1) || Accept("proc"_L1))
            statement->object = Object::Procedure;
        else if (Accept("function"_L1))
            statement->object = Object::Function;
        else if (Accept("index"_L1))
            statement->object = Object::Index;
        else
            Refuse(u"DROP "_s + Now().text.toUpper(), Now().place);
        if (Accept("if"_L1)) {
            Expect("exists"_L1);
            statement->ifExists = true;
        }
        if (statement->object == Object::Index) {
            statement->names.append(TakeName());
            if (AcceptSymbol("."_L1)) { // DROP INDEX table.index, or dbo.table.index
                statement->table = statement->names.takeFirst();
                statement->names.append(TakeName());
                if (AcceptSymbol("."_L1)) {
                    statement->table = statement->names.takeFirst();
                    statement->names.append(TakeName());
                }
            } else {
                Expect("on"_L1);
                statement->table = TakeObjectName();
            }
            return statement;
        }
        do
            statement->names.append(TakeObjectName());
        while (AcceptSymbol(","_L1));
        return statement;
    }

    StatementPtr ParseView()
    {
        const Token start = Now();
        auto statement = Begin<CreateViewStatement>(2);
        statement->name = TakeObjectName();
        const QStringList columns = Now().IsSymbol("("_L1) ? ParseColumnList() : QStringList();
        if (Now().Is("with"_L1))
            RefuseHere();
        Expect("as"_L1);
        ParseQuery(statement->query);
        AcceptSymbol(";"_L1);
        if (Now().kind != Token::Kind::End)
            Unexpected();
        RenameItems(*statement, columns);
        statement->source = SourceFrom(start);
        return statement;
    }
    // CREATE VIEW v (a, b) AS SELECT x, y: the names become the items' own.
    static void RenameItems(CreateViewStatement &view, const QStringList &columns)
    {
        std::vector<SelectItem> &items = view.query.arms.front().items;
        if (columns.isEmpty())
            return;
        if (size_t(columns.size()) != items.size())
            Fail(Error::Kind::Syntax, 8158,
                 u"'%1' has more or fewer columns than were specified in the column list."_s.arg(view.name), view.place,
                 view.name);
        for (size_t i = 0; i < items.size(); ++i) {
            if (items[i].star)
                Refuse(u"A star beside a list of column names"_s, items[i].place);
            items[i].alias = columns[qsizetype(i)];
        }
    }
    QString SourceFrom(const Token &start) const { return text_.mid(start.offset).trimmed(); }

    std::vector<Parameter> ParseParameters(QLatin1StringView end)
    {
        std::vector<Parameter> parameters;
        const bool parenthesis = AcceptSymbol("("_L1);
        if (parenthesis && AcceptSymbol(")"_L1))
            return parameters;
        if (!parenthesis && Now().Is(end))
            return parameters;
        do {
            Parameter parameter;
            const Place place = Now().place;
            parameter.label = Now().text.mid(1);
            parameter.name = TakeVariable(true);
            DeclareName(parameter.name, place);
            Accept("as"_L1);
            parameter.type = ParseType();
            if (AcceptSymbol("="_L1)) {
                parameter.defaultValue = ParseUnary();
                NeedScalar(*parameter.defaultValue);
            }
            parameter.output = Accept("output"_L1) || Accept("out"_L1);
            if (Now().Is("readonly"_L1))
                RefuseHere();
            parameters.push_back(std::move(parameter));
        } while (AcceptSymbol(","_L1));
        if (parenthesis)
            ExpectSymbol(")"_L1);
        return parameters;
    }

    StatementPtr ParseFunction()
    {
        const Token start = Now();
        auto statement = Begin<CreateFunctionStatement>(2);
        statement->name = TakeObjectName();
        if (!Now().IsSymbol("("_L1))
            Unexpected();
        statement->parameters = ParseParameters("returns"_L1);
        Expect("returns"_L1);
        if (Now().kind == Token::Kind::Variable)
            Refuse(u"A table function of several statements"_s, Now().place);
        if (Accept("table"_L1)) {
            if (Now().Is("with"_L1))
                RefuseHere();
            Accept("as"_L1);
            Expect("return"_L1);
            const bool parenthesis = AcceptSymbol("("_L1);
            statement->query = ParseQueryPtr();
            if (parenthesis)
                ExpectSymbol(")"_L1);
        } else {
            statement->returns = ParseType();
            if (Now().Is("with"_L1))
                RefuseHere();
            Accept("as"_L1);
            Expect("begin"_L1);
            statement->body = ParseUntilEnd();
            Expect("end"_L1);
        }
        AcceptSymbol(";"_L1);
        if (Now().kind != Token::Kind::End)
            Unexpected();
        statement->source = SourceFrom(start);
        return statement;
    }

    StatementPtr ParseProcedure()
    {
        const Token start = Now();
        auto statement = Begin<CreateProcedureStatement>(2);
        statement->name = TakeObjectName();
        statement->parameters = ParseParameters("as"_L1);
        if (Now().Is("with"_L1))
            RefuseHere();
        Expect("as"_L1);
        while (Now().kind != Token::Kind::End) {
            if (!AcceptSymbol(";"_L1))
                statement->body.push_back(ParseStatement());
        }
        statement->source = SourceFrom(start);
        return statement;
    }

    // ---- procedural statements

    StatementList ParseUntilEnd()
    {
        StatementList body;
        while (!Now().Is("end"_L1)) {
            if (Now().kind == Token::Kind::End)
                Unexpected();
            if (!AcceptSymbol(";"_L1))
                body.push_back(ParseStatement());
        }
        return body;
    }

    StatementPtr ParseBegin()
    {
        if (Now(1).Is("tran"_L1) || Now(1).Is("transaction"_L1)) {
            auto statement = Begin<TransactionStatement>(2);
            TransactionName();
            return statement;
        }
        if (Now(1).Is("try"_L1)) {
            auto statement = Begin<TryStatement>(2);
            statement->body = ParseUntilEnd();
            Expect("end"_L1);
            Expect("try"_L1);
            AcceptSymbol(";"_L1);
            Expect("begin"_L1);
            Expect("catch"_L1);
            statement->handler = ParseUntilEnd();
            Expect("end"_L1);
            Expect("catch"_L1);
            return statement;
        }
        auto statement = Begin<BlockStatement>();
        statement->body = ParseUntilEnd();
        Expect("end"_L1);
        return statement;
    }

    StatementPtr ParseIf()
    {
        auto statement = Begin<IfStatement>();
        statement->condition = ParseCondition();
        statement->then = ParseStatement();
        if (Now().IsSymbol(";"_L1) && Now(1).Is("else"_L1))
            Take();
        if (Accept("else"_L1))
            statement->otherwise = ParseStatement();
        return statement;
    }

    StatementPtr ParseDeclare()
    {
        if (Now(1).kind != Token::Kind::Variable)
            return ParseCursor();
        auto statement = Begin<DeclareStatement>();
        do {
            Parameter variable;
            const Place place = Now().place;
            variable.name = TakeVariable(true);
            if (variable.name.startsWith("@@"_L1))
                SyntaxError(variable.name, place);
            DeclareName(variable.name, place);
            Accept("as"_L1);
            if (Now().Is("table"_L1)) {
                auto table = Begin<CreateTableStatement>();
                table->table = variable.name;
                ParseTableBody(*table);
                statement->tables.push_back(std::move(table));
                continue;
            }
            variable.type = ParseType();
            if (AcceptSymbol("="_L1))
                variable.defaultValue = ParseScalar();
            statement->variables.push_back(std::move(variable));
        } while (AcceptSymbol(","_L1));
        return statement;
    }

    StatementPtr ParseSet()
    {
        if (Now(1).kind == Token::Kind::Variable) {
            auto statement = Begin<SetStatement>();
            statement->variable = TakeVariable();
            ExpectSymbol("="_L1);
            statement->value = ParseScalar();
            return statement;
        }
        auto statement = Begin<SetOptionStatement>();
        const Token option = Now();
        if (Accept("identity_insert"_L1)) {
            statement->identityInsert = TakeObjectName();
        } else {
            static const QSet<QString> harmless = {u"nocount"_s, u"ansi_nulls"_s, u"quoted_identifier"_s,
                                                   u"xact_abort"_s};
            if (!harmless.contains(option.lower))
                Refuse(u"SET "_s + option.text.toUpper(), statement->place);
            Take();
        }
        statement->on = Accept("on"_L1);
        if (!statement->on)
            Expect("off"_L1);
        return statement;
    }

    StatementPtr ParseExec()
    {
        auto statement = Begin<ExecStatement>();
        if (Now().IsSymbol("("_L1))
            Refuse(u"EXEC of a text"_s, Now().place);
        if (Now().kind == Token::Kind::Variable) {
            statement->result = TakeVariable();
            if (!AcceptSymbol("="_L1))
                Refuse(u"EXEC of a variable"_s, statement->place);
        }
        const Place place = Now().place;
        statement->procedure = TakeObjectName();
        if (IsForeignProcedure(statement->procedure))
            Refuse(statement->procedure, place);
        if (!AtValue() && !Now().Is("default"_L1))
            return statement;
        do {
            ExecStatement::Argument argument;
            if (Now().kind == Token::Kind::Variable && Now(1).IsSymbol("="_L1)) {
                argument.name = Take().text.toLower();
                Take();
            }
            if (!Accept("default"_L1)) {
                argument.value = ParseUnary();
                NeedScalar(*argument.value);
            }
            if (Accept("output"_L1) || Accept("out"_L1)) {
                if (!argument.value || argument.value->kind != Kind::Variable)
                    SyntaxError(u"OUTPUT"_s, Now(-1).place);
                argument.output = true;
            }
            statement->arguments.push_back(std::move(argument));
        } while (AcceptSymbol(","_L1));
        return statement;
    }

    StatementPtr ParseRaisError()
    {
        auto statement = Begin<RaisErrorStatement>();
        ExpectSymbol("("_L1);
        do
            statement->arguments.push_back(ParseScalar());
        while (AcceptSymbol(","_L1));
        ExpectSymbol(")"_L1);
        if (Now().Is("with"_L1))
            RefuseHere();
        if (statement->arguments.size() < 3)
            SyntaxError(u"RAISERROR"_s, statement->place);
        return statement;
    }

    StatementPtr ParseCursor()
    {
        using Action = CursorStatement::Action;
        const QString word = Now().lower;
        auto statement = Begin<CursorStatement>();
        if (word == "declare"_L1) {
            statement->action = Action::Declare;
            statement->name = TakeName();
            Expect("cursor"_L1);
            while (Now().Is("local"_L1) || Now().Is("fast_forward"_L1) || Now().Is("forward_only"_L1) ||
                   Now().Is("static"_L1) || Now().Is("read_only"_L1))
                Take();
            if (!Now().Is("for"_L1))
                RefuseHere();
            Take();
            statement->select = Begin<SelectStatement>(0);
            ParseQuery(statement->select->query);
        } else if (word == "fetch"_L1) {
            statement->action = Action::Fetch;
            if (Now().Is("prior"_L1) || Now().Is("first"_L1) || Now().Is("last"_L1) || Now().Is("absolute"_L1) ||
                Now().Is("relative"_L1))
                RefuseHere();
            if (Accept("next"_L1) || Now().Is("from"_L1))
                Expect("from"_L1);
            statement->name = TakeName();
            Expect("into"_L1);
            do
                statement->into.append(TakeVariable());
            while (AcceptSymbol(","_L1));
        } else {
            statement->action = word == "open"_L1    ? Action::Open
                                : word == "close"_L1 ? Action::Close
                                                     : Action::Deallocate;
            statement->name = TakeName();
        }
        return statement;
    }

    const QString text_;
    const QList<Token> tokens_;
    qsizetype at_ = 0;
    int nesting_ = 0;
    bool alone_ = true;
    QHash<QString, Place> used_;
    QSet<QString> declared_;
};

} // namespace

std::shared_ptr<Program> Parse(const QString &batch)
{
    return Parser(batch).Run();
}

QStringList SplitScript(const QString &script)
{
    static const QRegularExpression go(u"^\\s*GO\\s*;?\\s*$"_s, QRegularExpression::CaseInsensitiveOption);
    QStringList batches;
    QString batch;
    int line = 0;
    const QStringList lines = script.split(u'\n');
    for (const QString &text : lines) {
        ++line;
        if (go.match(text).hasMatch()) {
            batches.append(batch);
            batch = QString(line, u'\n');
        } else {
            batch += text;
            batch += u'\n';
        }
    }
    batches.append(batch);
    batches.removeIf([](const QString &text) { return text.trimmed().isEmpty(); });
    return batches;
}

} // namespace embedded
