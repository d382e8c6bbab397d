#include "tests/lint/Mutants.h"

#include <QRegularExpression>
#include <QSet>

namespace {

bool isText(const QString &line, QChar mark)
{
    return line.startsWith(mark) && (line.size() == 1 || line[1] == u' ');
}

void take(Mutant &mutant, const QString &line)
{
    const QString key = line.section(u':', 0, 0);
    const QString value = line.section(u':', 1).trimmed();
    if (isText(line, u'-'))
        mutant.old << line.sliced(1).trimmed();
    else if (isText(line, u'+'))
        mutant.planted << line.sliced(1).trimmed();
    else if (key == u"name")
        mutant.name = value;
    else if (key == u"file")
        mutant.file = value;
    else if (key == u"test")
        mutant.test = value;
    else if (key == u"equivalent")
        mutant.equivalent = value;
    else
        mutant.notUnderstood << line;
}

} // namespace

qsizetype Mutant::occurrencesIn(const QString &text) const
{
    QStringList lines;
    for (const QString &line : old)
        lines << QRegularExpression::escape(line);
    const QRegularExpression place(lines.join(QStringLiteral(R"([ \t]*\n[ \t]*)")));
    qsizetype count = 0;
    for (auto places = place.globalMatch(text); places.hasNext(); places.next())
        ++count;
    return count;
}

QList<Mutant> mutantsOfTable(const QString &path, const QString &text)
{
    QList<Mutant> mutants;
    bool isInside = false;
    for (const QString &line : text.split(u'\n')) {
        if (line.startsWith(u'#'))
            continue;
        const bool isBlank = line.trimmed().isEmpty();
        if (!isBlank && !isInside)
            mutants.append(Mutant{path, {}, {}, {}, {}, {}, {}, {}});
        if (!isBlank)
            take(mutants.last(), line);
        isInside = !isBlank;
    }
    return mutants;
}

QStringList faultsOf(const Mutant &mutant)
{
    QStringList reasons;
    if (!mutant.notUnderstood.isEmpty())
        reasons << QStringLiteral("not understood: %1").arg(mutant.notUnderstood.first());
    if (mutant.name.isEmpty())
        reasons << QStringLiteral("it has no name");
    if (mutant.file.isEmpty())
        reasons << QStringLiteral("it names no file");
    if (mutant.test.isEmpty() == mutant.equivalent.isEmpty())
        reasons << QStringLiteral("it needs either a test or the reason why there is none");
    if (mutant.old.join(QString()).isEmpty())
        reasons << QStringLiteral("it replaces nothing");
    if (mutant.old == mutant.planted)
        reasons << QStringLiteral("it changes nothing");
    QStringList faults;
    for (const QString &reason : reasons)
        faults << QStringLiteral("%1: %2: %3").arg(mutant.table, mutant.name, reason);
    return faults;
}

QStringList repeatedNames(const QList<Mutant> &mutants)
{
    QSet<QString> seen;
    QStringList repeated;
    for (const Mutant &mutant : mutants) {
        if (seen.contains(mutant.name))
            repeated << mutant.name;
        seen.insert(mutant.name);
    }
    return repeated;
}
