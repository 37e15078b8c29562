// SPDX-License-Identifier: MIT
#include "tests/faults/FaultSession.h"

#include "app/MainWindow.h"
#include "detection/DetectionDialogue.h"
#include "hotpixel/BadpixelListFile.h"
#include "simulator/EepromFile.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/faults/HangWatch.h"
#include "widgets/DoubleParameterWidget.h"
#include "widgets/ParameterBlockWidget.h"
#include "widgets/ParameterWidget.h"

#include <QAction>
#include <QApplication>
#include <QDeadlineTimer>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

namespace {

using Operation = SdkOperation;
using Positions = std::vector<EepromPosition>;

enum class Step {
    List,
    Open,
    Frames,
    Adjust,
    CorrectionOn,
    CorrectionOff,
    Detect,
    Add,
    Write,
    Save,
    Load,
    Unplug,
    Replug,
    Close,
    Reopen,
    CloseAgain,
    LastOpening
};

constexpr const char* StepNames[] = {
    "list",   "open",  "frames", "adjust",      "correction on", "correction off",
    "detect", "add",   "write",  "save",        "load",          "unplug",
    "replug", "close", "reopen", "close again", "last opening"};

const char* nameOf(Step step)
{
    return StepNames[static_cast<std::size_t>(step)];
}

bool isOpening(Step step)
{
    return step == Step::Open || step == Step::Reopen || step == Step::LastOpening;
}

// Far beyond what any step takes; only a defect makes anybody wait for so long.
constexpr int PatienceMsec = 60'000;
// For what a fault may have prevented: longer than the longest period in the window, of 1500 ms.
constexpr int ShortMsec = 1800;

/// What the window says when the @p nth call of an operation since the step's begin fails; null
/// where nothing in particular is said.
QString expectedMessage(Operation operation, Step step, int nth, bool garbage)
{
    QString unknown = QStringLiteral("Unknown error.");
    if (operation == Operation::GetFrameMemory) {
        return unknown;
    }
    if (operation == Operation::HotpixelCommand && step == Step::Write) {
        return QStringLiteral("Error writing hotpixel list");
    }
    if (!isOpening(step)) {
        return {};
    }
    switch (operation) {
    case Operation::InitCamera:
        return QStringLiteral("Could not initialize camera.");
    case Operation::LoadParameters:
        return unknown;
    case Operation::SetColorMode:
        return nth == 1 ? unknown : QStringLiteral("Color Mode not supported.");
    case Operation::GetSensorInfo:
        // A camera that was open before has left its size, which is right again.
        return step == Step::Open || garbage ? QStringLiteral("Can't allocate image memory.")
                                             : QString();
    case Operation::AllocImageMemory:
        return QStringLiteral("Can't allocate image memory.");
    case Operation::AddToSequence:
        return QStringLiteral("Can't add buffer to sequence.");
    case Operation::StartLiveVideo:
        return nth == 2 ? QString() : unknown; // the second starts after the correction's switch
    case Operation::GetFramesPerSecond:
    case Operation::GetPixelClockRange:
        return nth == 1 ? unknown : QString();
    case Operation::SetPixelClock:
        return nth == 2 ? unknown : QString();
    case Operation::SetExposureTime:
        return nth == 1 ? unknown : QString();
    default:
        return {};
    }
}

// How much faster than real cameras' the frames come: no faster than the window can take them.
#ifdef __SANITIZE_THREAD__
constexpr double Speed = 8.0;
#else
constexpr double Speed = 25.0;
#endif

/// Whether a failure of @p operation may keep a step from its effect until the camera is closed
/// and opened again.
bool mayPrevent(Operation operation, Step step)
{
    switch (operation) {
    case Operation::InitCamera:
    case Operation::SetColorMode:
    case Operation::GetSensorInfo:
    case Operation::AllocImageMemory:
    case Operation::AddToSequence:
    case Operation::GetFramesPerSecond:
    case Operation::GetPixelClockRange:
    case Operation::SetPixelClock:
        return isOpening(step);
    case Operation::SetExposureTime:
        return isOpening(step) || step == Step::Detect;
    case Operation::SetFrameRate:
    case Operation::SetHardwareGain:
    case Operation::GetFrameTimeRange:
    case Operation::GetExposureRange:
        return step == Step::Detect; // too short an exposure for the hot pixels to show
    case Operation::StartLiveVideo:
        // At the detection, when a frame that was on its way made up for it before.
        return isOpening(step) || step == Step::CorrectionOn || step == Step::CorrectionOff ||
               step == Step::Detect;
    case Operation::InitEvent:
    case Operation::EnableEvent:
        return true; // an event that nobody hears of
    case Operation::HotpixelCommand:
        // Without the camera's lists and limits nothing can be added.
        return isOpening(step) || step == Step::Detect || step == Step::Add || step == Step::Write;
    default:
        return false;
    }
}

BusDescription busIn(const QString& folder)
{
    CameraDescription camera;
    camera.serial = QStringLiteral("FAULT1");
    camera.model = QStringLiteral("VC-FAULT");
    camera.width = 64;
    camera.height = 48;
    // Long lines: even the shortest frame time, at which the correction is switched, leaves the
    // window time for anything else.
    camera.lineBlanking = 16000;
    camera.frameBlanking = 200;
    camera.bayer = true;
    camera.colorMode = 11;
    camera.hotPixels = 12;
    camera.factoryEntries = 2;
    camera.userEntries = 3;
    camera.userCapacity = 100;
    return {.cameras = {camera}, .speed = Speed, .eepromFolder = folder, .message = {}};
}

class Session
{
public:
    explicit Session(std::optional<SdkFault> fault)
        : m_fault(fault)
        , m_simulated(busIn(m_folder.filePath(QStringLiteral("eeprom"))))
        , m_sdk(m_simulated)
    {
        m_sdk.arm(fault);
    }

    SessionReport run();

private:
    using Condition = std::function<bool()>;

    void complain(const QString& text)
    {
        m_report.complaints.append(
            QStringLiteral("%1: %2").arg(QLatin1String(nameOf(m_step)), text));
    }

    void step(Step step, const Condition& act);
    void helpYourself();
    bool waitFor(const Condition& condition, int msec);
    bool effect(const Condition& condition);
    void pump();
    void answerModal();
    void checkEeprom();

    QAction* action(const char* name) const
    {
        return m_window->findChild<QAction*>(QLatin1String(name));
    }
    bool trigger(const char* name);
    [[nodiscard]] bool isListed() const;
    bool open();
    bool frames(int count);
    bool adjust();
    bool detect();
    bool add();
    bool write();
    bool save();
    bool load();
    [[nodiscard]] Positions shownUserEntries() const;
    [[nodiscard]] Positions eeprom();
    [[nodiscard]] int frameCount() const { return m_sdk.calls(Operation::GetFrameMemory); }
    [[nodiscard]] bool said(const QString& text) const { return m_messages.contains(text); }

    std::optional<SdkFault> m_fault;
    QTemporaryDir m_folder;
    SimulatedCameraSdk m_simulated;
    FaultyCameraSdk m_sdk;
    HangWatch m_watch;
    SessionReport m_report;
    std::unique_ptr<MainWindow> m_window;
    Step m_step = Step::List;
    bool m_tolerant = false; ///< the fault may still be in the way
    QStringList m_messages;  ///< of the status bar and of boxes, since the step began
    std::optional<Positions> m_inCamera;
    QString m_listFile = m_folder.filePath(QStringLiteral("list.txt"));
};

void Session::pump()
{
    QApplication::processEvents(QEventLoop::AllEvents, 5);
    QThread::msleep(1);
    m_watch.proceed(nameOf(m_step));
}

bool Session::waitFor(const Condition& condition, int msec)
{
    const QDeadlineTimer deadline(msec);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        pump();
    }
    return true;
}

/// Waits until @p condition holds; a fault that may be in the way is given no long chance.
bool Session::effect(const Condition& condition)
{
    const bool excusable =
        m_fault && m_sdk.struck() && (m_tolerant || mayPrevent(m_fault->operation, m_step));
    return waitFor(condition, excusable ? ShortMsec : PatienceMsec);
}

void Session::answerModal()
{
    m_watch.proceed(nameOf(m_step));
    QWidget* const modal = QApplication::activeModalWidget();
    if (auto* const box = qobject_cast<QMessageBox*>(modal)) {
        m_messages.append(box->text());
        QAbstractButton* const yes = box->button(QMessageBox::Yes);
        (yes != nullptr ? yes : box->buttons().constFirst())->click();
    } else if (auto* const files = qobject_cast<QFileDialog*>(modal)) {
        files->findChild<QLineEdit*>()->setText(m_listFile);
        static_cast<QDialog*>(files)->accept();
    }
}

bool Session::trigger(const char* name)
{
    if (!effect([&] { return action(name)->isEnabled(); })) {
        return false;
    }
    action(name)->trigger();
    return true;
}

Positions Session::shownUserEntries() const
{
    const QAbstractItemModel& model =
        *m_window->findChild<QTableView*>(QStringLiteral("BadpixelListView"))->model();
    Positions positions;
    for (int row = 0; row < model.rowCount(); ++row) {
        if (model.index(row, 2).data().toString() == QLatin1String("user")) {
            positions.push_back({static_cast<std::uint16_t>(model.index(row, 0).data().toInt()),
                                 static_cast<std::uint16_t>(model.index(row, 1).data().toInt())});
        }
    }
    return positions;
}

Positions Session::eeprom()
{
    return EepromFile(m_simulated.control(QStringLiteral("FAULT1")).eepromFileName()).read().user;
}

void Session::checkEeprom()
{
    const EepromFile file(m_simulated.control(QStringLiteral("FAULT1")).eepromFileName());
    if (!m_inCamera && !file.exists()) {
        return;
    }
    const Positions now = eeprom();
    if (m_inCamera && *m_inCamera != now) {
        complain(QStringLiteral("the EEPROM holds another list"));
    }
    m_inCamera = now;
}

bool Session::frames(int count)
{
    const int before = frameCount();
    return effect([&] { return frameCount() >= before + count; });
}

bool Session::isListed() const
{
    const auto* const list = m_window->findChild<QTableView*>(QStringLiteral("CameraListView"));
    return list->model()->rowCount() == 1 && list->selectionModel()->hasSelection();
}

bool Session::open()
{
    if (!effect([&] { return isListed(); }) || !trigger("actionOpen")) {
        return false;
    }
    if (m_simulated.openCameras() == 0) {
        return false;
    }
    m_simulated.control(QStringLiteral("FAULT1")).setCovered(true);
    return effect([&] { return action("actionClose")->isEnabled(); }) && frames(1) &&
           shownUserEntries() == eeprom();
}

bool Session::adjust()
{
    const auto* const block = m_window->findChild<ParameterBlockWidget*>();
    block->framerate()->spinBox()->setValue(1.5);
    block->exposure()->spinBox()->setValue(500.0);
    block->mastergain()->spinBox()->setValue(50);
    return block->isEnabled() && frames(1);
}

bool Session::detect()
{
    if (!trigger("actionDetect")) {
        return false;
    }
    const std::size_t before = shownUserEntries().size();
    auto* const dialogue = qobject_cast<DetectionDialogue*>(QApplication::activeModalWidget());
    if (dialogue == nullptr) {
        complain(QStringLiteral("no dialogue"));
        return false;
    }
    dialogue->buttonBox()->button(QDialogButtonBox::Ok)->click();
    const bool over = effect([&] { return dialogue->buttonBox()->isEnabled(); });
    const bool found = shownUserEntries().size() > before;
    dialogue->close();
    return over && found;
}

bool Session::add()
{
    const std::size_t before = shownUserEntries().size();
    if (!trigger("actionAdd")) {
        return false;
    }
    const bool added = shownUserEntries().size() == before + 1;
    if (!added && m_messages.isEmpty()) {
        complain(QStringLiteral("nothing added and nothing said"));
    }
    return added;
}

bool Session::write()
{
    const Positions wanted = shownUserEntries();
    if (!trigger("actionWrite")) {
        return false;
    }
    const Positions now = eeprom();
    const bool written = !said(QStringLiteral("Error writing hotpixel list"));
    if (written && now == wanted) {
        m_inCamera = now; // otherwise it has to be the old list still
    }
    return written && now == wanted;
}

bool Session::save()
{
    if (!trigger("actionSaveList")) {
        return false;
    }
    Positions saved;
    for (const BadpixelEntry& entry : hotpixel::readListFile(m_listFile)) {
        saved.push_back({entry.x, entry.y});
    }
    return saved == shownUserEntries();
}

bool Session::load()
{
    const Positions before = shownUserEntries();
    return trigger("actionLoadList") && shownUserEntries() == before;
}

/// What a technician does with a camera that does not do what it should.
void Session::helpYourself()
{
    m_tolerant = false;
    m_fault.reset();
    m_sdk.arm({});
    m_simulated.control(QStringLiteral("FAULT1")).setPlugged(true);
    for (QWidget* modal = QApplication::activeModalWidget(); modal != nullptr;
         modal = QApplication::activeModalWidget()) {
        modal->close();
    }
    if (m_simulated.openCameras() > 0) {
        if (!trigger("actionClose")) {
            complain(QStringLiteral("can't be closed"));
        }
    }
    if (m_simulated.openCameras() != 0 || m_simulated.imageMemories() != 0) {
        complain(QStringLiteral("%1 cameras open and %2 image memories left")
                     .arg(m_simulated.openCameras())
                     .arg(m_simulated.imageMemories()));
    }
    if (m_step != Step::Close && m_step != Step::CloseAgain && !open()) {
        complain(QStringLiteral("can't be opened again"));
    }
    if (m_step >= Step::Adjust && m_step < Step::Detect) {
        adjust();
    }
    if (m_step == Step::Detect) {
        // A run that was left without frames takes them now, and adds what it finds.
        frames(DetectionRun::FrameCount + 2);
    }
}

void Session::step(Step step, const Condition& act)
{
    m_step = step;
    m_watch.proceed(nameOf(step));
    m_messages.clear();
    const bool struckBefore = m_sdk.struck();
    const int callsBefore = m_fault ? m_sdk.calls(m_fault->operation) : 0;
    const bool done = act();
    const bool struckHere = m_sdk.struck() && !struckBefore;
    if (m_fault && struckHere) {
        const QString expected = expectedMessage(m_fault->operation, step,
                                                 m_fault->call - callsBefore, m_fault->garbage);
        if (!expected.isNull() && !said(expected)) {
            complain(QStringLiteral("\"%1\" is not said, but \"%2\"")
                         .arg(expected, m_messages.join(QStringLiteral("\", \""))));
        }
    }
    checkEeprom();
    if (done) {
        return;
    }
    const bool excusable =
        m_fault && m_sdk.struck() && (m_tolerant || mayPrevent(m_fault->operation, step));
    if (!excusable) {
        complain(QStringLiteral("without effect; said: \"%1\"")
                     .arg(m_messages.join(QStringLiteral("\", \""))));
    } else {
        m_report.absent.append(QLatin1String(nameOf(step)));
    }
    helpYourself();
}

SessionReport Session::run()
{
    QTimer answers;
    QObject::connect(&answers, &QTimer::timeout, &answers, [this] { answerModal(); });
    answers.start(20);
    // What the fault prevents may show only later: an event that is not heard, a limit not read.
    m_tolerant = m_fault && (m_fault->operation == Operation::InitEvent ||
                             m_fault->operation == Operation::EnableEvent ||
                             m_fault->operation == Operation::HotpixelCommand);

    m_window = std::make_unique<MainWindow>(m_sdk);
    m_window->show();
    auto* const bar = m_window->findChild<QStatusBar*>();
    QObject::connect(bar, &QStatusBar::messageChanged, bar, [this](const QString& text) {
        if (!text.isEmpty()) {
            m_messages.append(text);
        }
    });
    const QString serial = QStringLiteral("FAULT1");

    step(Step::List, [&] { return effect([&] { return isListed(); }); });
    step(Step::Open, [&] { return open(); });
    step(Step::Frames, [&] { return frames(3); });
    step(Step::Adjust, [&] { return adjust(); });
    step(Step::CorrectionOn, [&] { return trigger("actionHotpixelCorrection") && frames(1); });
    step(Step::CorrectionOff, [&] { return trigger("actionHotpixelCorrection") && frames(1); });
    step(Step::Detect, [&] { return detect(); });
    step(Step::Add, [&] { return add(); });
    step(Step::Write, [&] { return write(); });
    step(Step::Save, [&] { return save(); });
    step(Step::Load, [&] { return load(); });
    step(Step::Unplug, [&] {
        m_simulated.control(serial).setPlugged(false);
        return effect([&] { return !isListed(); });
    });
    step(Step::Replug, [&] {
        m_simulated.control(serial).setPlugged(true);
        return effect([&] { return action("actionClose")->isEnabled(); }) && frames(3);
    });
    step(Step::Close, [&] { return trigger("actionClose") && m_simulated.openCameras() == 0; });
    step(Step::Reopen, [&] { return open(); });
    step(Step::CloseAgain, [&] {
        return trigger("actionClose") && m_simulated.openCameras() == 0 &&
               m_simulated.imageMemories() == 0;
    });
    const bool struck = m_sdk.struck() || !m_report.absent.isEmpty();
    for (std::size_t i = 0; i < SdkOperationCount; ++i) {
        m_report.calls[i] = m_sdk.calls(static_cast<Operation>(i));
    }
    m_report.struck = struck;
    // The fault is over: whatever it did, the camera opens, and with its own list.
    m_sdk.arm({});
    m_fault.reset();
    m_tolerant = false;
    step(Step::LastOpening, [&] { return open(); });
    m_window.reset();
    m_watch.proceed("the end");
    if (m_simulated.openCameras() != 0 || m_simulated.imageMemories() != 0) {
        complain(QStringLiteral("the window's end leaves the camera open"));
    }
    checkEeprom();
    return m_report;
}

} // namespace

SessionReport runFaultSession(std::optional<SdkFault> fault)
{
    return Session(fault).run();
}
