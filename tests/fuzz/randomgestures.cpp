#include "randomgestures.h"
#include "files.h"

#include "previewwindow.h"

#include <QBuffer>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QMimeData>
#include <QUrl>

#include <climits>
#include <limits>

namespace
{

const QStringList texts{"0",           "1",          "5",          "-3",  "20",    "48",
                        "100000",      "2147483647", "2147483648", "",    "x",     "-2147483648",
                        "99999999999", "32767",      "-65536",     "3.7", "-32769"};

constexpr int mostAnswers = 25; // from then on every modal window is just closed

using NamedContents = std::pair<QString, QByteArray>;

std::vector<NamedContents> encodedPhotographs()
{
    const std::vector<std::pair<QString, QImage>> photographs{
        {"landscape.png", colourfulPhotograph({48, 36})},
        {"portrait.jpg", colourfulPhotograph({30, 60})},
        {"alpha.png", colourfulPhotograph({33, 33}, QImage::Format_ARGB32)},
        {"palette.png", colourfulPhotograph({24, 40}, QImage::Format_Indexed8)},
        {"grey.png", colourfulPhotograph({41, 17}, QImage::Format_Grayscale8)},
        {"pixel.png", colourfulPhotograph({1, 1})},
        {"row.png", colourfulPhotograph({300, 1})},
    };
    std::vector<NamedContents> files;
    for (const auto &[name, photograph] : photographs) {
        QByteArray contents;
        QBuffer buffer(&contents);
        const QByteArray format = QFileInfo(name).suffix().toLatin1();
        if (!photograph.save(&buffer, format.constData()))
            qFatal("cannot encode %s", qPrintable(name));
        files.emplace_back(name, contents);
    }
    return files;
}

} // namespace

GestureFiles::GestureFiles()
{
    const auto write = [this](QStringList &list, const std::vector<NamedContents> &files) {
        for (const auto &[name, contents] : files) {
            writeFile(filePath(name), contents);
            list.append(filePath(name));
        }
    };
    static const std::vector<NamedContents> photographs = encodedPhotographs();
    write(m_photographs, photographs);
    write(m_noPhotographs, {{"cut.png", photographs.front().second.left(200)},
                            {"text.png", "no picture"},
                            {"empty.jpg", QByteArray()},
                            {"circle.ini", "[General]\nCenterX=20\nCenterY=2147483647\nRadius=-8\n"}});
    m_noPhotographs.append({filePath("missing.gif"), m_folder.path()});
}

RandomAnswers::RandomAnswers(const GestureFiles &files, unsigned seed) : m_files(files), m_rng(seed)
{
    connect(&m_timer, &QTimer::timeout, this, &RandomAnswers::poll);
    m_timer.start(1);
}

void RandomAnswers::poll()
{
    QWidget *window = QApplication::activeModalWidget();
    if (!window || !window->isVisible() || m_answering.contains(window))
        return;
    m_tries = window == m_last ? m_tries + 1 : 0;
    m_last = window;
    m_answering.append(window);
    // The answer may open another modal window, whose own loop the timer has to reach.
    QMetaObject::invokeMethod(
        this,
        [this, window, guard = QPointer<QWidget>(window)] {
            if (guard)
                answer(window);
            m_answering.removeOne(window);
        },
        Qt::QueuedConnection);
}

void RandomAnswers::answer(QWidget *window)
{
    auto *dialog = qobject_cast<QDialog *>(window);
    if (dialog && (m_tries > 3 || ++m_answers > mostAnswers)) {
        dialog->done(QDialog::Rejected);
        return;
    }
    const int choice = upTo(5);
    if (choice == 0) {
        window->close();
    } else if (choice == 1) {
        QTest::keyClick(window, Qt::Key_Escape);
    } else if (auto *picker = qobject_cast<QFileDialog *>(window)) {
        const QStringList names{m_files.photographs().first(), m_files.filePath("circle.ini"),
                                m_files.filePath("missing.ini"), m_files.filePath("new.png"), "nowhere"};
        auto *edit = picker->findChild<QLineEdit *>("fileNameEdit");
        edit->setText(names.at(upTo(names.size() - 1)));
        QTest::keyClick(edit, Qt::Key_Return);
    } else {
        for (QLineEdit *edit : window->findChildren<QLineEdit *>()) {
            if (upTo(3) == 0)
                edit->setText(texts.at(upTo(texts.size() - 1)));
        }
        const auto buttons = window->findChildren<QAbstractButton *>();
        if (!buttons.isEmpty())
            buttons.at(upTo(buttons.size() - 1))->click();
    }
}

RandomGestures::RandomGestures(FreshWindow &window, const GestureFiles &files, unsigned seed)
    : m_window(window)
    , m_files(files)
    , m_rng(seed)
    , m_actions{
          {"press", 120, &RandomGestures::mousePress},
          {"move", 180, &RandomGestures::mouseMove},
          {"release", 120, &RandomGestures::mouseRelease},
          {"drag", 120, &RandomGestures::wholeDrag},
          {"mouse over the preview", 20, &RandomGestures::previewMouse},
          {"signal of the picture", 40, &RandomGestures::pictureSignal},
          {"type", 80, &RandomGestures::type},
          {"press a button", 40, &RandomGestures::pressButton},
          {"release a button", 40, &RandomGestures::releaseButton},
          {"click a button", 40, &RandomGestures::clickButton},
          {"tick", 80, &RandomGestures::tick},
          {"open a photograph", 60, &RandomGestures::openPhotograph},
          {"open something else", 6, &RandomGestures::openNoPhotograph},
          {"drop", 12, &RandomGestures::drop},
          {"toggle a view", 40, &RandomGestures::toggleView},
          {"reset", 20, &RandomGestures::reset},
          {"modal action", 4, &RandomGestures::modalAction},
          {"batch", 3, &RandomGestures::batch},
          {"windows", 30, &RandomGestures::windows},
          {"values", 40, &RandomGestures::values},
          {"convert", 40, &RandomGestures::convert},
          {"something later", 60, &RandomGestures::eventsLater},
          {"handle events", 40, &RandomGestures::handleEvents},
      }
{
}

QString RandomGestures::performOne()
{
    int sum = 0;
    for (const Action &action : m_actions)
        sum += action.weight;
    int pick = upTo(sum - 1);
    for (const Action &action : m_actions) {
        if (pick < action.weight) {
            (this->*action.perform)();
            return action.name;
        }
        pick -= action.weight;
    }
    return {};
}

int RandomGestures::anyNumber()
{
    switch (upTo(9)) {
    case 0:
        return between(INT_MIN, INT_MAX);
    case 1:
        return oneOf(
            std::vector<int>{INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1, 1 << 30, -(1 << 30), 65536});
    case 2:
        return between(-70000, 70000);
    default:
        return between(-20, 80);
    }
}

// Mostly on the circle's handles and in the picture.
QPoint RandomGestures::anyPosition()
{
    const int choice = upTo(9);
    if (choice == 0)
        return {between(-100000, 100000), between(-100000, 100000)};
    if (choice == 1)
        return {between(-40, 20), between(-40, 20)};
    const MyImage *label = m_window.ui->label;
    if (choice < 5 && qAbs(qint64{m_window.centerX}) + qAbs(qint64{m_window.centerY}) < 10000 &&
        qAbs(qint64{m_window.radius}) < 10000) {
        const double scale = label->hasScaledContents() && !m_window.image.isNull()
                                 ? qMax(double(m_window.image.width()) / qMax(label->width(), 1),
                                        double(m_window.image.height()) / qMax(label->height(), 1))
                                 : 1.0;
        const QPoint handle{m_window.centerX + oneOf(std::vector<int>{-1, 0, 1}) * m_window.radius,
                            m_window.centerY + oneOf(std::vector<int>{-1, 0, 1}) * m_window.radius};
        return {int(handle.x() / scale), int(handle.y() / scale)};
    }
    return {upTo(qMax(label->width(), 1)), upTo(qMax(label->height(), 1))};
}

Qt::MouseButtons RandomGestures::anyButtons()
{
    return oneOf(std::vector<Qt::MouseButtons>{Qt::NoButton, Qt::LeftButton, Qt::LeftButton, Qt::RightButton,
                                               Qt::LeftButton | Qt::RightButton, Qt::MiddleButton});
}

QPushButton *RandomGestures::stepButton()
{
    const auto &ui = *m_window.ui;
    return oneOf(std::vector<QPushButton *>{ui.btnUp, ui.btnDown, ui.btnLeft, ui.btnRight, ui.btnSizeUp,
                                            ui.btnSizeDown});
}

void RandomGestures::sendMouse(QEvent::Type type, QWidget *widget, QPoint position, Qt::MouseButton button,
                               Qt::MouseButtons held)
{
    QMouseEvent event(type, position, position, button, held, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

void RandomGestures::mousePress()
{
    const Qt::MouseButton button = oneIn(3) ? Qt::RightButton : Qt::LeftButton;
    const Qt::MouseButtons others = anyButtons();
    sendMouse(QEvent::MouseButtonPress, m_window.ui->label, anyPosition(), button, others | button);
}

void RandomGestures::mouseMove()
{
    const Qt::MouseButtons held = anyButtons();
    sendMouse(QEvent::MouseMove, m_window.ui->label, anyPosition(), Qt::NoButton, held);
}

void RandomGestures::mouseRelease()
{
    const Qt::MouseButton button = oneIn(3) ? Qt::RightButton : Qt::LeftButton;
    const Qt::MouseButtons held = oneIn(4) ? anyButtons() : Qt::MouseButtons();
    sendMouse(QEvent::MouseButtonRelease, m_window.ui->label, anyPosition(), button, held);
}

void RandomGestures::wholeDrag()
{
    const Qt::MouseButton button = oneIn(4) ? Qt::RightButton : Qt::LeftButton;
    QWidget *label = m_window.ui->label;
    sendMouse(QEvent::MouseButtonPress, label, anyPosition(), button, button);
    for (int moves = upTo(3); moves > 0; --moves)
        sendMouse(QEvent::MouseMove, label, anyPosition(), Qt::NoButton, button);
    sendMouse(QEvent::MouseButtonRelease, label, anyPosition(), button, Qt::NoButton);
}

void RandomGestures::previewMouse()
{
    auto *label = m_window.previewWindow->findChild<QLabel *>("label2");
    const auto type = oneOf(
        std::vector<QEvent::Type>{QEvent::MouseButtonPress, QEvent::MouseMove, QEvent::MouseButtonRelease});
    const Qt::MouseButtons held = anyButtons();
    sendMouse(type, label, anyPosition(), Qt::LeftButton, held);
}

void RandomGestures::pictureSignal()
{
    MyImage *label = m_window.ui->label;
    const int x = anyNumber();
    const int y = anyNumber();
    switch (upTo(6)) {
    case 0:
        emit label->mouseleftdown(x, y);
        break;
    case 1:
        emit label->mouseleftup(x, y);
        break;
    case 2:
        emit label->mouserightup();
        break;
    case 3:
        emit label->clicked(x, y);
        break;
    case 4:
        emit label->size_changed(x, y, anyNumber());
        break;
    case 5: {
        const QPoint from{anyNumber(), anyNumber()};
        const QPoint to{anyNumber(), anyNumber()};
        const QPoint at{anyNumber(), anyNumber()};
        emit label->size_changing(x, y, from.x(), from.y(), to.x(), to.y(), at.x(), at.y());
    } break;
    default:
        emit label->mouse_move(x, y);
    }
}

void RandomGestures::type()
{
    const auto &ui = *m_window.ui;
    QLineEdit *edit = oneOf(std::vector<QLineEdit *>{ui.lineCenterX, ui.lineCenterY, ui.lineRadius});
    if (!edit->isEnabled())
        return; // in the middle of a batch run
    edit->selectAll();
    QTest::keyClicks(edit, oneIn(2) ? oneOf(texts) : QString::number(between(-10, 60)));
    if (!oneIn(3))
        QTest::keyClick(edit, Qt::Key_Return);
}

void RandomGestures::pressButton()
{
    QPushButton *button = stepButton();
    sendMouse(QEvent::MouseButtonPress, button, button->rect().center(), Qt::LeftButton, Qt::LeftButton);
}

void RandomGestures::releaseButton()
{
    QPushButton *button = stepButton();
    const QPoint position = oneIn(2) ? button->rect().center() : QPoint(-50, 300);
    sendMouse(QEvent::MouseButtonRelease, button, position, Qt::LeftButton, Qt::NoButton);
}

void RandomGestures::clickButton()
{
    stepButton()->click();
}

void RandomGestures::tick()
{
    for (int ticks = oneIn(3) ? 12 : 1; ticks > 0; --ticks)
        m_window.slot("click_timer");
}

void RandomGestures::openPhotograph()
{
    m_window.loadFileName = oneOf(m_files.photographs());
    m_window.loadImage();
}

void RandomGestures::openNoPhotograph()
{
    m_window.loadFileName = oneOf(m_files.noPhotographs());
    m_window.loadImage();
}

void RandomGestures::drop()
{
    QMimeData dropped;
    QList<QUrl> urls;
    for (int count = oneIn(12) ? upTo(3) : 1; count > 0; --count)
        urls.append(
            QUrl::fromLocalFile(oneIn(12) ? oneOf(m_files.noPhotographs()) : oneOf(m_files.photographs())));
    if (!oneIn(8))
        dropped.setUrls(urls);
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    m_window.dragEnterEvent(&enter);
    if (urls.size() > 1)
        m_leftTheFileAlone = false;
    QDropEvent event({50, 50}, Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    m_window.dropEvent(&event);
}

void RandomGestures::toggleView()
{
    const auto &ui = *m_window.ui;
    oneOf(std::vector<QAction *>{ui.actionAuto_Size, ui.actionAuto_Preview, ui.actionPreview_Window})
        ->trigger();
}

void RandomGestures::reset()
{
    m_window.ui->actionParam_Reset->trigger();
}

void RandomGestures::modalAction()
{
    m_leftTheFileAlone = false;
    const auto &ui = *m_window.ui;
    switch (upTo(5)) {
    case 0:
        ui.actionSetting->trigger();
        break;
    case 1:
        ui.actionSave_Param->trigger();
        break;
    case 2:
        ui.actionLoad_Param->trigger();
        break;
    case 3:
        ui.btnBrowse->click();
        break;
    case 4:
        ui.btnImageRead->click();
        break;
    default:
        ui.btnConvert->click();
    }
    // Options may have asked for a large map.
    m_window.outputSizeX = qMin(m_window.outputSizeX, 64);
    m_window.outputSizeY = qMin(m_window.outputSizeY, 32);
}

void RandomGestures::batch()
{
    m_leftTheFileAlone = false;
    m_window.fileList = QStringList{oneOf(m_files.photographs()), oneOf(m_files.noPhotographs()),
                                    oneOf(m_files.photographs())};
    m_window.sortType = upTo(2);
    m_window.nameType = upTo(2);
    m_window.overwrite = oneIn(2);
    if (oneIn(2))
        m_window.batchConvert();
    else
        m_window.ui->actionBatch_Convert->trigger();
}

void RandomGestures::windows()
{
    switch (upTo(6)) {
    case 0:
        m_window.resize(QSize{between(300, 900), between(300, 800)});
        break;
    case 1:
        m_window.previewWindow->resize(QSize{between(10, 700), between(10, 500)});
        break;
    case 2:
        m_window.previewWindow->close();
        break;
    case 3:
        m_window.ui->btnPreview->click();
        break;
    case 4:
        m_window.close();
        m_window.show();
        break;
    case 5:
        m_window.repaint();
        break;
    default:
        m_window.previewWindow->repaint();
    }
}

// What a settings file may hold.
void RandomGestures::values()
{
    const std::vector<double> doubles{0.0,
                                      1.0,
                                      -1.0,
                                      90.0,
                                      90.5,
                                      180.0,
                                      -90.0,
                                      360.0,
                                      1e300,
                                      33.3,
                                      6.6,
                                      0.5,
                                      100.0,
                                      -1e9,
                                      std::numeric_limits<double>::quiet_NaN(),
                                      std::numeric_limits<double>::infinity()};
    switch (upTo(9)) {
    case 0:
        m_window.distance = oneIn(3) ? oneOf(doubles) : 100.0;
        break;
    case 1:
        m_window.latitude = oneOf(doubles);
        break;
    case 2:
        m_window.longitude = oneOf(doubles);
        break;
    case 3:
        m_window.azimuth = oneOf(doubles);
        break;
    case 4:
        m_window.outputSizeX = oneOf(std::vector<int>{64, 64, 64, 33, 2, 1, 0, -5});
        break;
    case 5:
        m_window.outputSizeY = oneOf(std::vector<int>{32, 32, 32, 17, 2, 1, 0, -5});
        break;
    case 6:
        m_window.penSize = oneIn(4) ? anyNumber() : between(1, 9);
        break;
    case 7:
        m_window.penColor =
            oneOf(std::vector<QColor>{Qt::red, QColor(), QColor(0, 255, 0, 90), Qt::transparent});
        break;
    case 8:
        m_window.format = between(-1, 2);
        m_window.quality = anyNumber();
        break;
    default:
        m_window.centerX = anyNumber();
        m_window.centerY = anyNumber();
        m_window.radius = anyNumber();
        m_window.updateScreenParameter();
        m_window.updateSelect();
    }
}

void RandomGestures::convert()
{
    if (oneIn(2))
        m_window.ui->btnPreview->click();
    else
        m_window.convertImage();
}

// An action in the middle of whatever handles events next, a conversion for example.
void RandomGestures::eventsLater()
{
    if (m_later > 3)
        return;
    ++m_later;
    QTimer::singleShot(0, this, [this] {
        --m_later;
        if (m_nested > 8)
            return;
        ++m_nested;
        performOne();
        --m_nested;
    });
    if (oneIn(2))
        convert();
}

void RandomGestures::handleEvents()
{
    QCoreApplication::processEvents();
}
