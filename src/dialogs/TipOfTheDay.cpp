#include "dialogs/TipOfTheDay.h"

#include "dialogs/TipFile.h"
#include "shell/Icons.h"
#include "shell/Settings.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QVBoxLayout>

namespace thntfs {

namespace {

const QString kTipsAtStartKey = QStringLiteral("TipOfTheDay/StartUp");
const QString kNextTipKey = QStringLiteral("TipOfTheDay/Next");
constexpr int kTipIconPixels = 48;
constexpr int kTipLines = 6;
constexpr int kTipLetters = 52; // a line
constexpr double kHeadingScale = 1.3;

class CTipOfTheDay : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CTipOfTheDay)

public:
    CTipOfTheDay(QWidget* owner, const QStringList& tips);

private:
    void MakeText();
    QLayout* UpperPart();
    QLayout* LowerPart();
    void ShowNext();

    QStringList tips_;
    QTextEdit* text_ = new QTextEdit;
};

CTipOfTheDay::CTipOfTheDay(QWidget* owner, const QStringList& tips)
    : QDialog(owner)
    , tips_(tips) {
    setWindowTitle(tr("Tip of the Day"));
    MakeText();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(UpperPart());
    layout->addWidget(text_, 1);
    layout->addLayout(LowerPart());
    resize(minimumSizeHint()); // the text would like to be larger than tips are
    ShowNext();
}

// A tip may be long, and have words without an end: it is scrolled and broken anywhere.
void CTipOfTheDay::MakeText() {
    text_->setReadOnly(true);
    text_->setTabChangesFocus(true);
    text_->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    text_->setAccessibleName(tr("Tip"));
    const QFontMetrics metrics = text_->fontMetrics();
    text_->setMinimumSize(metrics.averageCharWidth() * kTipLetters, metrics.lineSpacing() * kTipLines);
}

QLayout* CTipOfTheDay::UpperPart() {
    auto* icon = new QLabel;
    icon->setPixmap(LoadIcon("tip").pixmap(QSize(kTipIconPixels, kTipIconPixels), devicePixelRatioF()));
    auto* heading = new QLabel(tr("Did you know..."));
    QFont font = heading->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * kHeadingScale);
    heading->setFont(font);
    auto* line = new QHBoxLayout;
    line->addWidget(icon);
    line->addWidget(heading, 1);
    return line;
}

QLayout* CTipOfTheDay::LowerPart() {
    auto* atStart = new QCheckBox(tr("&Show tips at startup"));
    atStart->setChecked(TipsWantedAtStart());
    connect(atStart, &QCheckBox::toggled, this,
            [](bool wanted) { OpenSettings().setValue(kTipsAtStartKey, wanted ? 1 : 0); });
    auto* next = new QPushButton(tr("&Next Tip"));
    connect(next, &QPushButton::clicked, this, [this] { ShowNext(); });
    auto* close = new QPushButton(tr("&Close"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, [this] { accept(); });
    auto* line = new QHBoxLayout;
    line->addWidget(atStart, 1);
    line->addWidget(next);
    line->addWidget(close);
    return line;
}

// The file may have become shorter, and the setting may hold anything.
void CTipOfTheDay::ShowNext() {
    QSettings settings = OpenSettings();
    const qsizetype place = settings.value(kNextTipKey).toUInt() % tips_.size();
    text_->setPlainText(tips_[place]);
    settings.setValue(kNextTipKey, (place + 1) % tips_.size());
}

} // namespace

bool TipsWantedAtStart() { return OpenSettings().value(kTipsAtStartKey, 1).toInt() != 0; }

void ShowTipOfTheDay(QWidget* owner) {
    ProvideTipFile(TipFilePath());
    CTipOfTheDay dialog(owner, ReadTips(TipFileInUse()));
    dialog.exec();
}

} // namespace thntfs
