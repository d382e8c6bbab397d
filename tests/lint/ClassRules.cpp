#include "tests/lint/ClassRules.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

namespace {

constexpr int kMostFunctions = 30;

/// Reads a header's code once, brace by brace, and counts the functions of each class in it.
class ClassReader final
{
public:
    explicit ClassReader(const SourceText &header) : m_header(header) {}

    QList<DeclaredClass> read()
    {
        for (m_line = 0; m_line < m_header.code.size(); ++m_line) {
            const QString &line = m_header.code[m_line];
            if (line.trimmed().startsWith(u'#'))
                continue;
            for (const QChar c : line)
                take(c);
            take(u' ');
        }
        return m_found;
    }

private:
    struct Scope
    {
        int found = -1; ///< its class in m_found; -1 for any other braces
        bool inSignals = false;
    };

    void take(QChar c)
    {
        if (c == u'{')
            open();
        else if (c == u'}')
            close();
        else if (c == u';')
            endStatement();
        else if (c == u':' && isAccessLabel())
            m_statement.clear();
        else
            m_statement += c;
    }

    bool isAccessLabel()
    {
        static const QRegularExpression label(
            QStringLiteral(R"(^\s*((public|protected|private)(\s+Q_SLOTS)?|Q_SIGNALS)\s*$)"));
        const QRegularExpressionMatch match = label.match(m_statement);
        if (match.hasMatch() && !m_scopes.isEmpty())
            m_scopes.last().inSignals = match.captured(1) == u"Q_SIGNALS";
        return match.hasMatch();
    }

    void open()
    {
        static const QRegularExpression head(
            QStringLiteral(R"(\b(class|struct)\s+(\w+)(?:\s+final)?\s*(:[^()]*)?$)"));
        const QRegularExpressionMatch match = head.match(m_statement.trimmed());
        Scope scope;
        if (match.hasMatch() && !m_statement.contains(u"enum ")) {
            scope.found = static_cast<int>(m_found.size());
            m_found.append({match.captured(2), m_header.path, m_line + 1, 0});
        } else {
            countFunction();
        }
        m_scopes.append(scope);
        m_statement.clear();
    }

    void close()
    {
        if (!m_scopes.isEmpty())
            m_scopes.removeLast();
        m_statement.clear();
    }

    void endStatement()
    {
        countFunction();
        m_statement.clear();
    }

    void countFunction()
    {
        if (m_scopes.isEmpty() || m_scopes.last().found < 0 || m_scopes.last().inSignals)
            return;
        if (declaresFunction(m_statement))
            ++m_found[m_scopes.last().found].functions;
    }

    /// Macros are written in capitals, and a variable has its parentheses inside < > or after =.
    static bool declaresFunction(QString statement)
    {
        static const QRegularExpression arguments(QStringLiteral("<[^<>]*>"));
        static const QRegularExpression macro(QStringLiteral(R"(\bQ_[A-Z_]+\b(\s*\([^()]*\))?)"));
        static const QRegularExpression function(
            QStringLiteral(R"(^[^=(]*(\boperator\s*\S+\s*|[\w~]\s*)\()"));
        static const QRegularExpression other(
            QStringLiteral(R"(^\s*(friend|using|typedef|static_assert)\b|=\s*delete\s*$)"));
        statement.remove(macro);
        for (QString before; before != statement;) {
            before = statement;
            statement.remove(arguments);
        }
        return !other.match(statement).hasMatch() && function.match(statement).hasMatch();
    }

    const SourceText &m_header;
    int m_line = 0;
    QString m_statement;
    QList<Scope> m_scopes;
    QList<DeclaredClass> m_found;
};

QList<DeclaredClass> allDeclared(const QList<SourceText> &sources)
{
    QList<DeclaredClass> all;
    for (const SourceText &source : sources) {
        if (source.path.endsWith(QStringLiteral(".h")))
            all << declaredClasses(source);
    }
    return all;
}

/// The classes of which this source defines functions.
QSet<QString> classesDefinedIn(const SourceText &source)
{
    static const QRegularExpression definition(
        QStringLiteral(R"(^\w[^=;(]*?(\w+)::(~?\w+|operator\S+)\()"));
    QSet<QString> classes;
    for (const QString &line : source.code) {
        const QRegularExpressionMatch match = definition.match(line);
        if (match.hasMatch())
            classes.insert(match.captured(1));
    }
    return classes;
}

} // namespace

QList<DeclaredClass> declaredClasses(const SourceText &header)
{
    return ClassReader(header).read();
}

QStringList classesWithTooManyFunctions(const QList<SourceText> &sources)
{
    QStringList found;
    for (const DeclaredClass &declared : allDeclared(sources)) {
        if (declared.functions > kMostFunctions)
            found << QStringLiteral("%1:%2: %3 has %4 functions, over %5 are more than one idea")
                         .arg(declared.path)
                         .arg(declared.line)
                         .arg(declared.name)
                         .arg(declared.functions)
                         .arg(kMostFunctions);
    }
    return found;
}

QStringList classesOverSeveralSources(const QList<SourceText> &sources)
{
    QHash<QString, int> headers;
    for (const DeclaredClass &declared : allDeclared(sources))
        ++headers[declared.name];
    QHash<QString, QStringList> definitions;
    for (const SourceText &source : sources) {
        if (!source.path.endsWith(QStringLiteral(".cpp")))
            continue;
        for (const QString &name : classesDefinedIn(source))
            definitions[name] << source.path;
    }
    QStringList found;
    for (auto it = definitions.cbegin(); it != definitions.cend(); ++it) {
        if (headers.value(it.key()) == 1 && it->size() > 1)
            found << QStringLiteral("%1: %2 is cut over them")
                         .arg(it->join(QStringLiteral(", ")), it.key());
    }
    found.sort();
    return found;
}
