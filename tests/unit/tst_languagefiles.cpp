#include <QDir>
#include <QMap>
#include <QSettings>
#include <QtTest>

namespace
{

/// The whole vocabulary: what each window reads, in its order.
const QMap<QString, QStringList> &vocabulary()
{
    static const QMap<QString, QStringList> keys = {
        {QStringLiteral("main"),
         QStringLiteral("lbl_1 lbl_2 lbl_3 lbl_4 lbl_4_2 btn_open btn_preview lbl_center lbl_radius btn_conv "
                        "btn_browse title menu_file menu_show cmd_load_param cmd_save_param cmd_reset_param "
                        "cmd_batch_conv cmd_setting cmd_preview_window cmd_auto_preview cmd_auto_size "
                        "file_filter open_file open_error overwrite_question saved_file inifile_filter "
                        "save_inifile save_inifile_title load_inifile batch_btn_stop batch_success "
                        "batch_fail1 batch_fail2 batch_fail3 save_image_filter save_image_title "
                        "preview_window_title")
             .split(QLatin1Char(' '))},
        {QStringLiteral("batch_convert"),
         QStringLiteral("lbl_1 lbl_2 lbl_3 lbl_4 lbl_5 btn_file btn_folder btn_output btn_convert btn_cancel "
                        "btn_sort1 btn_sort2 btn_filename1 btn_filename2 file_filter file_open_title "
                        "file_selected folder_open_title output_open_title title chk_overwrite "
                        "chk_open_filer")
             .split(QLatin1Char(' '))},
        {QStringLiteral("config"),
         QStringLiteral("lbl_1 lbl_1_2 lbl_2 lbl_3 lbl_3_2 lbl_4 lbl_4_2 lbl_5 lbl_5_2 lbl_5_3 btn_default "
                        "btn_cancel title error_mess")
             .split(QLatin1Char(' '))},
    };
    return keys;
}

QString path(const QString &language)
{
    return QFINDTESTDATA("../../lang") + QLatin1Char('/') + language + QStringLiteral("/ovmic_lang.ini");
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

/// The language files that come with the program.
class tst_LanguageFiles : public QObject
{
    Q_OBJECT

private:
    static void addLanguages()
    {
        QTest::addColumn<QString>("language");
        const QStringList languages =
            QDir(QFINDTESTDATA("../../lang")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QVERIFY(languages.contains(QStringLiteral("en")));
        for (const QString &language : languages)
            QTest::newRow(qUtf8Printable(language)) << language;
    }

private slots:
    void theWholeVocabularyAndNothingElse_data() { addLanguages(); }
    void theWholeVocabularyAndNothingElse()
    {
        QFETCH(QString, language);
        QSettings file(path(language), QSettings::IniFormat);
        file.setIniCodec("UTF-8");
        QCOMPARE(sorted(file.childGroups()), vocabulary().keys());
        QCOMPARE(file.childKeys(), QStringList());
        for (auto group = vocabulary().begin(); group != vocabulary().end(); ++group) {
            file.beginGroup(group.key());
            QCOMPARE(sorted(file.allKeys()), sorted(group.value()));
            file.endGroup();
        }
    }

    // An unquoted comma makes a list of a value, whose text is empty.
    void everyValueIsAText_data() { addLanguages(); }
    void everyValueIsAText()
    {
        QFETCH(QString, language);
        QSettings file(path(language), QSettings::IniFormat);
        file.setIniCodec("UTF-8");
        for (const QString &key : file.allKeys()) {
            QCOMPARE(file.value(key).type(), QVariant::String);
            const QString text = file.value(key).toString();
            QVERIFY2(!text.trimmed().isEmpty(), qUtf8Printable(key));
            QVERIFY2(!text.contains(QChar::ReplacementCharacter), qUtf8Printable(key));
        }
    }

    // The same bytes must mean the same whatever blanks, commas and semicolons a translator uses.
    void everyValueIsQuoted_data() { addLanguages(); }
    void everyValueIsQuoted()
    {
        QFETCH(QString, language);
        QFile file(path(language));
        QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
        const QRegularExpression keyLine(QStringLiteral("^[a-z0-9_]+=\".+\"$"));
        const QRegularExpression otherLine(QStringLiteral("^(\\[[a-z_]+\\]|;.*|)$"));
        while (!file.atEnd()) {
            const QString line = QString::fromUtf8(file.readLine()).chopped(1);
            QVERIFY2(keyLine.match(line).hasMatch() || otherLine.match(line).hasMatch(),
                     qUtf8Printable(line));
        }
    }

    void filtersShowTheSameFilesInEveryLanguage_data() { addLanguages(); }
    void filtersShowTheSameFilesInEveryLanguage()
    {
        QFETCH(QString, language);
        QSettings file(path(language), QSettings::IniFormat);
        file.setIniCodec("UTF-8");
        const auto text = [&file](const char *key) { return file.value(QLatin1String(key)).toString(); };
        QVERIFY(text("main/file_filter").endsWith(QStringLiteral(" (*.gif *.png *.jpg)")));
        QVERIFY(text("batch_convert/file_filter").endsWith(QStringLiteral(" (*.gif *.png *.jpg)")));
        QVERIFY(text("main/inifile_filter").endsWith(QStringLiteral(" (*.ini)")));
        QVERIFY(text("main/save_image_filter").endsWith(QStringLiteral(" (*.")));
    }

    // These are appended to a file name or a number, without a blank of the program's own.
    void piecesKeepTheirLeadingBlank_data() { addLanguages(); }
    void piecesKeepTheirLeadingBlank()
    {
        QFETCH(QString, language);
        QSettings file(path(language), QSettings::IniFormat);
        file.setIniCodec("UTF-8");
        for (const char *key : {"main/open_error", "main/overwrite_question", "main/saved_file",
                                "batch_convert/file_selected"}) {
            QVERIFY2(file.value(QLatin1String(key)).toString().startsWith(QLatin1Char(' ')), key);
        }
    }

    void aWordIsTheRightOne_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("word");
        // What adjusts the circle stands below the label.
        QTest::newRow("adjusted below, English") << "en"
                                                 << "main/lbl_2"
                                                 << "below";
        QTest::newRow("adjusted below, German") << "de"
                                                << "main/lbl_2"
                                                << "unten";
        QTest::newRow("adjusted below, French") << "fr"
                                                << "main/lbl_2"
                                                << "dessous";
        QTest::newRow("adjusted below, Spanish") << "es"
                                                 << "main/lbl_2"
                                                 << "abajo";
        // The count may be one.
        QTest::newRow("a count of one, English") << "en"
                                                 << "batch_convert/file_selected"
                                                 << "file(s)";
        QTest::newRow("a count of one, German") << "de"
                                                << "batch_convert/file_selected"
                                                << "Datei(en)";
        QTest::newRow("a count of one, French") << "fr"
                                                << "batch_convert/file_selected"
                                                << "fichier(s)";
        QTest::newRow("a count of one, Spanish") << "es"
                                                 << "batch_convert/file_selected"
                                                 << "archivo(s)";
        // "Breite" alone is a width, "Länge" a length.
        QTest::newRow("latitude, German") << "de"
                                          << "config/lbl_5"
                                          << "Breitengrad";
        QTest::newRow("longitude, German") << "de"
                                           << "config/lbl_5_2"
                                           << "Längengrad";
    }
    void aWordIsTheRightOne()
    {
        QFETCH(QString, language);
        QFETCH(QString, key);
        QFETCH(QString, word);
        QSettings file(path(language), QSettings::IniFormat);
        file.setIniCodec("UTF-8");
        QVERIFY2(file.value(key).toString().contains(word), qUtf8Printable(file.value(key).toString()));
    }
};

QTEST_GUILESS_MAIN(tst_LanguageFiles)
#include "tst_languagefiles.moc"
