#include "chart/SliceReload.h"
#include "tests/support/run/GuiTestMain.h"

#include <memory>

namespace {

/// Slices are written as letters: old ones are a, b, c ..., new ones are A, B, C ...
class Story final
{
public:
    Story(const std::vector<double> &oldValues, const std::vector<double> &newValues)
    {
        for (const double value : oldValues) {
            m_layers.push_back(std::make_shared<SliceLayer>());
            m_layers.back()->setValue(value);
            m_names[m_layers.back().get()] = letter('a', m_names.size());
        }
        SliceReload reload(m_layers, newValues, [this] {
            auto layer = std::make_shared<SliceLayer>();
            m_names[layer.get()] = letter('A', m_made++);
            return layer;
        });
        isFreshStart = reload.isFreshStart();
        for (std::size_t i = 0; i < newValues.size(); ++i) {
            SliceLayer &layer = reload.layerForSlice(i);
            layer.setValue(newValues[i]);
            used += m_names[&layer];
        }
        stack = written(m_layers);
        spare = written(reload.spare());
    }

    bool isFreshStart = false;
    QString used;  ///< which layer shows which value
    QString stack; ///< the pie's list, lowest first
    QString spare;

private:
    static QChar letter(char first, qsizetype place)
    {
        return QLatin1Char(static_cast<char>(first + place));
    }

    QString written(const SliceLayers &layers)
    {
        QString text;
        for (const auto &layer : layers)
            text += m_names[layer.get()];
        return text;
    }

    SliceLayers m_layers;
    QHash<const SliceLayer *, QChar> m_names;
    qsizetype m_made = 0;
};

} // namespace

class TestSliceReload final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matchesSlicesWithValues_data();
    void matchesSlicesWithValues();
    void startsFreshOnlyFromNothingToSomething();
};

using Values = std::vector<double>;
Q_DECLARE_METATYPE(Values)

void TestSliceReload::matchesSlicesWithValues_data()
{
    QTest::addColumn<Values>("oldValues");
    QTest::addColumn<Values>("newValues");
    QTest::addColumn<QString>("used");
    QTest::addColumn<QString>("stack");
    QTest::addColumn<QString>("spare");
    const struct
    {
        const char *name;
        Values oldValues;
        Values newValues;
        const char *used;
        const char *stack;
        const char *spare;
    } rows[] = {
        {"nothing to nothing", {}, {}, "", "", ""},
        {"from nothing", {}, {1, 1, 2}, "ABC", "ABC", ""},
        {"as many, the same", {1, 2, 3}, {1, 2, 3}, "abc", "abc", ""},
        {"as many, all changed", {1, 2, 3}, {4, 5, 6}, "abc", "abc", ""},
        {"one more at the end", {1, 2}, {1, 2, 3}, "abA", "abA", ""},
        {"one more in the middle", {1, 3}, {1, 2, 3}, "aAB", "aAbB", "b"},
        {"one more, first changed", {1, 2}, {5, 2, 3}, "AbB", "AabB", "a"},
        {"two more, all changed", {1}, {5, 6, 7}, "ABC", "AaBC", "a"},
        {"one less at the end", {1, 2, 3}, {1, 2}, "ab", "abc", "c"},
        {"one less, first changed", {1, 2, 3}, {5, 2}, "ab", "bca", "c"},
        {"one less, second changed", {1, 2, 3}, {1, 5}, "ab", "acb", "c"},
        {"two less, first changed", {1, 2, 3}, {5}, "a", "bca", "bc"},
        {"two less, all changed", {1, 2, 3, 4}, {5, 6}, "ab", "bcda", "cd"},
        {"to nothing", {1, 2}, {}, "", "ab", "ab"},
    };
    for (const auto &row : rows)
        QTest::newRow(row.name) << row.oldValues << row.newValues << QString::fromLatin1(row.used)
                                << QString::fromLatin1(row.stack) << QString::fromLatin1(row.spare);
}

void TestSliceReload::matchesSlicesWithValues()
{
    QFETCH(Values, oldValues);
    QFETCH(Values, newValues);
    const Story story(oldValues, newValues);
    QTEST(story.used, "used");
    QTEST(story.stack, "stack");
    QTEST(story.spare, "spare");
}

void TestSliceReload::startsFreshOnlyFromNothingToSomething()
{
    QVERIFY(Story({}, {1}).isFreshStart);
    QVERIFY(!Story({}, {}).isFreshStart);
    QVERIFY(!Story({1}, {1, 2}).isFreshStart);
}

VANTOR_GUI_TEST_MAIN(TestSliceReload)
#include "tst_SliceReload.moc"
