#include "randomgestures.h"

#include "messagecollector.h"
#include "previewwindow.h"
#include "windowreference.h"

namespace
{

constexpr int actionsPerSequence = 50;

unsigned numberFromEnvironment(const char *name, unsigned otherwise)
{
    bool given = false;
    const unsigned number = qEnvironmentVariable(name).toUInt(&given);
    return given ? number : otherwise;
}

bool drawsInInts(const TestWindow &w)
{
    const auto small = [](int value, int limit) { return value > -limit && value < limit; };
    return small(w.centerX, 10000) && small(w.centerY, 10000) && small(w.radius, 10000) &&
           small(w.penSize, 100);
}

} // namespace

/// Sequences of random gestures, each in a window of its own. The seed is the row's name; one sequence alone
/// is run by OVMIC_GESTURE_SEED=seed OVMIC_GESTURE_SEQUENCES=1.
class tst_Gestures : public QObject
{
    Q_OBJECT

private slots:
    void rulesHoldAfterEveryAction_data();
    void rulesHoldAfterEveryAction();

private:
    QString broken(const FreshWindow &window) const;
    QString brokenAtTheEnd(FreshWindow &window, bool knowsItsFile) const;

    bool m_removalArmed = false;
};

void tst_Gestures::rulesHoldAfterEveryAction_data()
{
    QTest::addColumn<unsigned>("seed");
    const unsigned first = numberFromEnvironment("OVMIC_GESTURE_SEED", 20110311);
    const unsigned count = numberFromEnvironment("OVMIC_GESTURE_SEQUENCES", 500);
    for (unsigned i = 0; i < count; ++i)
        QTest::addRow("seed %u", first + i) << first + i;
}

void tst_Gestures::rulesHoldAfterEveryAction()
{
    QFETCH(unsigned, seed);
    const MessageCollector collector;
    QStringList done;
    const auto story = [&](int action, const QString &what) {
        return QString("seed %1, action %2: %3; after: %4").arg(seed).arg(action).arg(what, done.join(", "));
    };

    const GestureFiles files;
    FreshWindow window;
    window.clickTimer->blockSignals(true); // ticks come as actions, so that a seed always means the same
    window.outputFolder = window.filePath("");
    window.inputFolder = files.filePath("");
    window.saveFileName = window.filePath("map.jpg");
    window.quality = 85;
    m_removalArmed = false;
    if (seed % 8 != 0) {
        window.loadFileName = files.photographs().at(static_cast<int>(seed) % files.photographs().size());
        window.loadImage();
    }
    RandomGestures gestures(window, files, seed);
    RandomAnswers answers(files, seed);
    for (int action = 0; action < actionsPerSequence; ++action) {
        done.append(gestures.performOne());
        const QString what = broken(window);
        m_removalArmed = window.clearPending;
        QVERIFY2(what.isEmpty(), qPrintable(story(action, what)));
    }
    const QString what = brokenAtTheEnd(window, gestures.leftTheFileAlone());
    QVERIFY2(what.isEmpty(), qPrintable(story(actionsPerSequence, what)));

    while (QGuiApplication::overrideCursor())
        QGuiApplication::restoreOverrideCursor();
    // The toolkit complains about a misuse with the name of the class. The quality is passed on as it is.
    QStringList warnings = collector.messages().filter(QRegularExpression("^Q[A-Z]"));
    warnings.removeAll("QPixmap::save: Quality out of range [-1, 100]");
    QVERIFY2(warnings.isEmpty(), qPrintable(story(actionsPerSequence, warnings.join("; "))));
}

// What holds after every action.
QString tst_Gestures::broken(const FreshWindow &w) const
{
    const QPixmap shown = w.ui->label->pixmap(Qt::ReturnByValue);
    if (w.image.isNull() != shown.isNull())
        return "a photograph without a picture or a picture without a photograph";
    if (!w.image.isNull() && shown.size() != w.image.size())
        return "the picture is not as large as the photograph";
    if (w.selectShow && !w.ui->label->selectMode)
        return "a circle is shown that gestures do not edit";
    if (m_removalArmed && !w.clearPending)
        return "the removal was disarmed";
    if (w.stepDelay < 0 || w.stepDelay > 10)
        return "a delay that no button makes";
    if (qAbs(w.stepX) + qAbs(w.stepY) + qAbs(w.stepR) > 1)
        return "a step that no button makes";
    if (w.ui->actionPreview_Window->isChecked() != w.previewWindow->isVisible())
        return "the preview's action does not tell whether it is shown";
    if (w.ui->actionAuto_Preview->isChecked() != w.autoPreview)
        return "the action of auto preview does not tell whether it is on";
    if (w.ui->label->hasScaledContents() != w.autoSize || w.ui->actionAuto_Size->isChecked() != w.autoSize)
        return "the action of auto size does not tell whether it is on";
    if (!w.isEnabled() || !w.isVisible())
        return "the window is not to be used";
    return {};
}

// What holds once the window has come to rest.
QString tst_Gestures::brokenAtTheEnd(FreshWindow &w, bool knowsItsFile) const
{
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
    w.updateScreenParameter();
    w.updateSelect();
    const SelectionCircle typed{w.ui->lineCenterX->text().toInt(), w.ui->lineCenterY->text().toInt(),
                                w.ui->lineRadius->text().toInt()};
    if (!(typed == circleOf(w)))
        return "the line edits do not show the circle";
    if (w.image.isNull())
        return {};
    if (knowsItsFile && w.image != QImage(w.loadFileName))
        return "the photograph is not the one that was loaded";
    const std::optional<SelectionCircle> circle =
        w.selectShow ? std::make_optional(circleOf(w)) : std::nullopt;
    if ((!circle || drawsInInts(w)) &&
        w.shownPicture() != uncachedPicture(w.image, circle, w.penColor, w.penSize))
        return "the picture is not the uncached one";
    const QImage expected = convertToMap(w.image, mapParametersOf(w));
    if (w.convertImage() != expected)
        return "the map is not the one of the photograph and the values";
    return {};
}

WINDOW_TEST_MAIN(tst_Gestures)
#include "tst_gestures.moc"
