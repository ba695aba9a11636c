#include "shell/Boxes.h"

#include "shell/WindowMessages.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <memory>

namespace thntfs {

namespace {

struct BoxRequest {
    const QString& Text;
    const QString& Caption;
    BoxIcon Icon;
    BoxButtons Buttons;
    BoxAnswer Preset;
    const QString& More;
};

bool boxesRefused = false;

QMessageBox::Icon IconOf(const BoxRequest& request) {
    if (request.Buttons != BoxButtons::Ok) {
        return QMessageBox::Question;
    }
    switch (request.Icon) {
    case BoxIcon::Warning:
        return QMessageBox::Warning;
    case BoxIcon::Stop:
        return QMessageBox::Critical;
    default:
        return QMessageBox::Information;
    }
}

QMessageBox::StandardButtons ButtonsOf(BoxButtons buttons) {
    switch (buttons) {
    case BoxButtons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case BoxButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case BoxButtons::SaveCancel:
        return QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel;
    default:
        return QMessageBox::Ok;
    }
}

BoxAnswer AnswerUnasked(BoxButtons buttons) {
    switch (buttons) {
    case BoxButtons::YesNo:
        return BoxAnswer::No;
    case BoxButtons::YesNoCancel:
    case BoxButtons::SaveCancel:
        return BoxAnswer::Cancel;
    default:
        return BoxAnswer::Ok;
    }
}

QWidget* Owner() {
    if (QWidget* modal = QApplication::activeModalWidget()) {
        return modal;
    }
    return dynamic_cast<QWidget*>(MainWindow());
}

BoxAnswer AnswerOf(int button, BoxButtons buttons) {
    switch (button) {
    case QMessageBox::Yes:
    case QMessageBox::Save:
        return BoxAnswer::Yes;
    case QMessageBox::No:
    case QMessageBox::Discard:
        return BoxAnswer::No;
    default:
        return AnswerUnasked(buttons);
    }
}

/// The lines of a text stay as they were written, if they aren't very long, on a small screen too.
void KeepLines(QMessageBox& box) {
    constexpr double kLargestShare = 0.7; // of the screen
    auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    const int lines = box.fontMetrics().size(0, box.text()).width();
    if (label != nullptr && lines <= box.screen()->availableSize().width() * kLargestShare) {
        label->setMinimumWidth(lines);
    }
}

// What is selected of the text, else all of it.
void CopyTextOf(const QMessageBox& box) {
    const auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    const bool part = label != nullptr && label->hasSelectedText();
    QStringList texts{box.text(), box.informativeText()};
    texts.removeAll(QString());
    QApplication::clipboard()->setText(part ? label->selectedText() : texts.join(QLatin1String("\n\n")));
}

BoxAnswer RunBox(const BoxRequest& request) {
    if (boxesRefused) {
        return AnswerUnasked(request.Buttons);
    }
    QMessageBox box(Owner());
    box.setIcon(IconOf(request));
    box.setWindowTitle(request.Caption);
    box.setTextFormat(Qt::PlainText);
    box.setText(request.Text);
    box.setInformativeText(request.More);
    box.setStandardButtons(ButtonsOf(request.Buttons));
    if (request.Buttons == BoxButtons::SaveCancel) { // desktops word it differently
        box.button(QMessageBox::Discard)->setText(QCoreApplication::translate("Boxes", "Don't save"));
    }
    KeepLines(box);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    QObject::connect(new QShortcut(QKeySequence::Copy, &box), &QShortcut::activated, &box,
                     [&box] { CopyTextOf(box); });
    if (request.Preset == BoxAnswer::No) {
        box.setDefaultButton(QMessageBox::No);
    }
    return AnswerOf(box.exec(), request.Buttons);
}

constexpr WindowMessage<const BoxRequest&> kShowBox{WM_APP};

/// Shows the boxes of workers, which wait in their send.
class BoxService : public MessageTarget {
public:
    std::intptr_t OnMessage(std::uint32_t /*message*/, std::uintptr_t wParam,
                            std::uintptr_t /*lParam*/) override {
        return static_cast<std::intptr_t>(RunBox(kShowBox.First(wParam)));
    }
};

std::unique_ptr<BoxService> boxService;

} // namespace

BoxAnswer ShowBox(const QString& text, const QString& caption, BoxIcon icon, BoxButtons buttons,
                  BoxAnswer preset, const QString& more) {
    const BoxRequest request{text, caption, icon, buttons, preset, more};
    if (OnInterfaceThread()) {
        return RunBox(request);
    }
    return static_cast<BoxAnswer>(kShowBox.Send(boxService.get(), request));
}

bool AskYesNo(const QString& text, const QString& caption, BoxAnswer preset) {
    return ShowBox(text, caption, BoxIcon::Information, BoxButtons::YesNo, preset) == BoxAnswer::Yes;
}

void PrepareBoxes() {
    if (!boxService) {
        boxService = std::make_unique<BoxService>();
        qAddPostRoutine([] { boxService.reset(); });
    }
}

bool BoxesAreRefused() { return boxesRefused; }

void RefuseBoxes(bool refuse) {
    boxesRefused = refuse;
    if (!refuse) {
        return;
    }
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (auto* box = qobject_cast<QMessageBox*>(window)) {
            box->reject();
        }
    }
}

} // namespace thntfs
