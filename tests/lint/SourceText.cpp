#include "tests/lint/SourceText.h"

#include <QRegularExpression>

namespace {

/// Reads C++ text once and copies each character to the part to which it belongs.
class Splitter final
{
public:
    explicit Splitter(const QString &text) : m_text(text) {}

    void split()
    {
        while (m_at < m_text.size()) {
            if (startsWith(u"//"))
                takeComment(lineEnd());
            else if (startsWith(u"/*"))
                takeComment(after(QStringLiteral("*/"), m_at + 2));
            else if (startsWith(u"R\""))
                takeRawString();
            else if (m_text[m_at] == u'"' || (m_text[m_at] == u'\'' && !isDigitSeparator()))
                takeLiteral();
            else
                take(1, Kind::Code);
        }
    }

    QString code;
    QString comments;

private:
    enum class Kind { Code, Comment, Inside };

    bool startsWith(QStringView mark) const
    {
        return QStringView(m_text).sliced(m_at).startsWith(mark);
    }
    qsizetype lineEnd() const
    {
        const qsizetype end = m_text.indexOf(u'\n', m_at);
        return end < 0 ? m_text.size() : end;
    }
    qsizetype after(const QString &mark, qsizetype from) const
    {
        const qsizetype found = m_text.indexOf(mark, from);
        return found < 0 ? m_text.size() : found + mark.size();
    }
    bool isDigitSeparator() const { return m_at > 0 && m_text[m_at - 1].isLetterOrNumber(); }

    void take(qsizetype count, Kind kind)
    {
        for (const QChar c : QStringView(m_text).sliced(m_at, count)) {
            code += kind == Kind::Code || c == u'\n' ? c : u' ';
            comments += kind == Kind::Comment || c == u'\n' ? c : u' ';
        }
        m_at += count;
    }

    void takeComment(qsizetype end) { take(end - m_at, Kind::Comment); }

    void takeRawString()
    {
        const qsizetype open = m_text.indexOf(u'(', m_at);
        const QString delimiter = m_text.mid(m_at + 2, open - m_at - 2);
        const qsizetype end = after(u')' + delimiter + u'"', open);
        take(2, Kind::Code);
        take(end - 1 - m_at, Kind::Inside);
        take(1, Kind::Code);
    }

    void takeLiteral()
    {
        const QChar quote = m_text[m_at];
        take(1, Kind::Code);
        while (m_at < m_text.size() && m_text[m_at] != quote && m_text[m_at] != u'\n')
            take(m_text[m_at] == u'\\' && m_at + 1 < m_text.size() ? 2 : 1, Kind::Inside);
        if (m_at < m_text.size())
            take(1, Kind::Code);
    }

    const QString &m_text;
    qsizetype m_at = 0;
};

qsizetype indentation(const QString &line)
{
    qsizetype count = 0;
    while (count < line.size() && line[count] == u' ')
        ++count;
    return count;
}

/// Whether the text before the brace declares a function.
bool endsADeclarator(const QStringList &code, qsizetype brace)
{
    static const QRegularExpression ended(QStringLiteral("([;{}]|public:|private:|protected:)$"));
    QString head;
    for (qsizetype i = brace - 1; i >= 0; --i) {
        const QString line = code[i].trimmed();
        if (line.isEmpty() || line.startsWith(u'#') || ended.match(line).hasMatch())
            break;
        head.prepend(line + u' ');
    }
    return head.contains(u')');
}

} // namespace

bool SourceText::isCpp() const
{
    return path.endsWith(QStringLiteral(".h")) || path.endsWith(QStringLiteral(".cpp"));
}

bool SourceText::isBelow(const char *folder) const
{
    return path.startsWith(QLatin1String(folder) + u'/');
}

SourceText sourceText(const QString &path, const QString &text)
{
    SourceText source;
    source.path = path;
    source.lines = text.split(u'\n');
    if (source.lines.last().isEmpty())
        source.lines.removeLast();
    if (!source.isCpp()) {
        source.code = source.lines;
        source.comments = source.lines;
        return source;
    }
    Splitter splitter(text);
    splitter.split();
    source.code = splitter.code.split(u'\n');
    source.comments = splitter.comments.split(u'\n');
    return source;
}

QList<FunctionBody> functionBodies(const SourceText &source)
{
    QList<FunctionBody> bodies;
    for (qsizetype start = 0; start < source.code.size(); ++start) {
        const QString &line = source.code[start];
        if (line.trimmed() != u'{' || !endsADeclarator(source.code, start))
            continue;
        const QString closing = QString(indentation(line), u' ') + u'}';
        qsizetype end = start;
        while (end < source.code.size() && !source.code[end].startsWith(closing))
            ++end;
        bodies.append({static_cast<int>(start + 1), static_cast<int>(end - start + 1)});
    }
    return bodies;
}
