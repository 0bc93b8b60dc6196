// The man pages and the completion of ovmic-map know the options that the program has.

#include "mapfolder.h"

#include <QRegularExpression>

namespace
{

const QString packaging = QStringLiteral(OVMIC_PACKAGING);

QStringList sortedNames(QStringList names)
{
    names.removeAll({});
    names.sort();
    return names;
}

/// The names at the beginning of a line such as "-c, --circle X,Y,RADIUS".
QStringList namesAtTheBeginning(const QString &line)
{
    QStringList names;
    auto matches = QRegularExpression(R"((?:^|\G, )(--?[a-z0-9][a-z-]*))").globalMatch(line);
    while (matches.hasNext())
        names.append(matches.next().captured(1));
    return names;
}

/// The lines of the help that begin an option, without their indentation.
QStringList optionLines()
{
    QStringList lines;
    for (const QString &line : QString::fromUtf8(MapFolder().run({"--help"}).output).split('\n'))
        if (line.startsWith("  -"))
            lines.append(line.mid(2));
    return lines;
}

QStringList namesInHelp()
{
    QStringList names;
    for (const QString &line : optionLines())
        names += namesAtTheBeginning(line);
    return sortedNames(names);
}

/// What bash proposes for a word of the command line after another one.
QStringList completions(const QString &word, const QString &previous)
{
    const QString script = "compopt() { :; }; source '" + packaging +
                           "/completions/ovmic'; _ovmic_map ovmic-map '" + word + "' '" + previous +
                           R"('; printf '%s\n' "${COMPREPLY[@]}")";
    return sortedNames(QString::fromUtf8(MapFolder().shell(script).output).split('\n'));
}

} // namespace

class tst_OptionNames : public QObject
{
    Q_OBJECT

private slots:
    void manPage_data();
    void manPage();
    void completion();
    void completionOfValues();
    void completionOfPhotographs();
};

void tst_OptionNames::manPage_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("English") << "man/ovmic-map.1";
    QTest::newRow("Japanese") << "man/ja/ovmic-map.1";
}

void tst_OptionNames::manPage()
{
    QFETCH(QString, path);
    QStringList names;
    for (QByteArray line : contentsOf(packaging + '/' + path).split('\n')) {
        if (line.startsWith("\\fB\\-"))
            for (const char *markup : {"\\fB", "\\fI", "\\fR"})
                line.replace(markup, "");
        names += namesAtTheBeginning(line.startsWith("\\-") ? line.replace("\\-", "-") : QByteArray());
    }
    QCOMPARE(sortedNames(names), namesInHelp());
}

void tst_OptionNames::completion()
{
    QCOMPARE(completions("-", "ovmic-map"), namesInHelp());
    QCOMPARE(completions("--over", "photograph.jpg"), QStringList{"--overwrite"});
}

/// Words in small letters among the alternatives of a value are to be typed as they are.
void tst_OptionNames::completionOfValues()
{
    int withWords = 0;
    for (const QString &line : optionLines()) {
        const QString value = line.section(' ', -1);
        QStringList words;
        if (value.contains('|'))
            words = value.split('|').filter(QRegularExpression("^[a-z-]+$"));
        withWords += words.isEmpty() ? 0 : 1;
        for (const QString &name : words.isEmpty() ? QStringList() : namesAtTheBeginning(line))
            QCOMPARE(completions("", name), sortedNames(words));
    }
    QVERIFY(withWords > 3);
}

void tst_OptionNames::completionOfPhotographs()
{
    const MapFolder folder;
    for (const char *name : {"a.GIF", "b.png", "c.jpg", "d.txt", "ovmic.ini"})
        folder.write(name, "");
    folder.makeFolder("more");
    const QString start = folder.path() + '/';
    QCOMPARE(completions(start, "ovmic-map"),
             sortedNames({start + "a.GIF", start + "b.png", start + "c.jpg", start + "more"}));
}

QTEST_GUILESS_MAIN(tst_OptionNames)
#include "tst_optionnames.moc"
