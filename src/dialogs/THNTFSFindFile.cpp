#include "dialogs/THNTFSFindFile.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <array>

namespace thntfs {

namespace {

constexpr int kFindWidth = 372;
constexpr std::uint64_t kMaxSize = std::uint64_t{1} << 44U;

struct SizeUnit {
    const char* Name;
    unsigned Shift; ///< that makes bytes of it
    int Digits;     ///< of the longest number
};
constexpr std::array<SizeUnit, 3> kUnits{{{"KB", 10, 11}, {"MB", 20, 8}, {"GB", 30, 5}}};

constexpr int kFirstYear = 1980;
constexpr int kLastYear = 2107;

std::uint16_t DosDateOf(const QDate& date) {
    return static_cast<std::uint16_t>((date.year() - kFirstYear) << 9 | date.month() << 5 | date.day());
}

QDateEdit* DayEdit(const QString& name, QWidget* parent) {
    auto* edit = new QDateEdit(QDate::currentDate(), parent);
    edit->setDateRange(QDate(kFirstYear, 1, 1), QDate(kLastYear, 12, 31));
    edit->setCalendarPopup(true);
    edit->setAccessibleName(name);
    return edit;
}

QComboBox* Choice(const QStringList& texts, const QString& name, QWidget* parent) {
    auto* box = new QComboBox(parent);
    box->addItems(texts);
    box->setAccessibleName(name);
    return box;
}

} // namespace

CTHNTFSFindFile::CTHNTFSFindFile(QWidget* owner)
    : QDialog(owner) {
    setWindowTitle(tr("Find files and folders"));
    MakeParts();
    LayOut();
    Connect();
    SwitchSize(false);
    SwitchDate(false);
    filters_->hide();
    pattern_->setFocus();
}

void CTHNTFSFindFile::MakeParts() {
    pattern_ = new QLineEdit(this);
    matchCase_ = new QCheckBox(tr("&Match case"), this);
    options_ = new QPushButton(tr("&Options>>"), this);
    options_->setAutoDefault(false);
    search_ = new QPushButton(tr("Search &Now"), this);
    search_->setDefault(true);
    search_->setEnabled(false);
    cancel_ = new QPushButton(tr("&Cancel"), this);
    cancel_->setAutoDefault(false);

    filters_ = new QWidget(this);
    size_ = new QCheckBox(tr("&Size"), filters_);
    sizeMode_ = Choice({tr("At least"), tr("At most")}, tr("Size is"), filters_);
    sizeNumber_ = new QLineEdit(QStringLiteral("0"), filters_);
    sizeNumber_->setAccessibleName(tr("Size"));
    sizeNumber_->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), sizeNumber_));
    sizeUnit_ = Choice({}, tr("Unit of the size"), filters_);
    for (const SizeUnit& unit : kUnits) {
        sizeUnit_->addItem(QLatin1String(unit.Name));
    }
    sizeNumber_->setMaxLength(kUnits.front().Digits);
    date_ = new QCheckBox(tr("&Date"), filters_);
    dateMode_ = Choice({tr("Last access date"), tr("Creation date")}, tr("Which date"), filters_);
    from_ = DayEdit(tr("First day"), filters_);
    to_ = DayEdit(tr("Last day"), filters_);
    oneList_ = new QCheckBox(tr("Show &all hits in one list"), filters_);
}

void CTHNTFSFindFile::LayOut() {
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(search_);
    buttons->addWidget(cancel_);
    buttons->addWidget(options_);
    buttons->addStretch();
    auto* upper = new QHBoxLayout;
    upper->addLayout(PatternLine(), 1);
    upper->addLayout(buttons);
    auto* lower = new QVBoxLayout(filters_);
    lower->setContentsMargins({});
    lower->addLayout(SizeLine());
    lower->addLayout(DateLine());
    lower->addWidget(oneList_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(upper);
    layout->addWidget(filters_);
    layout->setSizeConstraint(QLayout::SetFixedSize); // follows what is open
    setMinimumWidth(kFindWidth);
    const std::array<QWidget*, 14> order{pattern_,  matchCase_, search_,     cancel_,   options_,
                                         size_,     sizeMode_,  sizeNumber_, sizeUnit_, date_,
                                         dateMode_, from_,      to_,         oneList_};
    for (std::size_t i = 1; i < order.size(); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }
}

QLayout* CTHNTFSFindFile::PatternLine() {
    auto* label = new QLabel(tr("&Find What"), this);
    label->setBuddy(pattern_);
    auto* example = new QLabel(tr("e.g. filename*.* or *.ext\n\nPress F3 to repeat search."), this);
    auto* lines = new QVBoxLayout;
    lines->addWidget(label);
    lines->addWidget(pattern_);
    lines->addWidget(example);
    lines->addWidget(matchCase_);
    lines->addStretch();
    return lines;
}

QLayout* CTHNTFSFindFile::SizeLine() {
    auto* line = new QHBoxLayout;
    line->addWidget(size_);
    line->addWidget(sizeMode_);
    line->addWidget(sizeNumber_, 1);
    line->addWidget(sizeUnit_);
    return line;
}

QLayout* CTHNTFSFindFile::DateLine() {
    auto* lines = new QGridLayout;
    lines->addWidget(date_, 0, 0);
    lines->addWidget(dateMode_, 0, 1, 1, 4);
    lines->addWidget(new QLabel(tr("from"), filters_), 1, 1);
    lines->addWidget(from_, 1, 2);
    lines->addWidget(new QLabel(tr("to"), filters_), 1, 3);
    lines->addWidget(to_, 1, 4);
    lines->setColumnStretch(2, 1);
    lines->setColumnStretch(4, 1);
    return lines;
}

void CTHNTFSFindFile::Connect() {
    connect(search_, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel_, &QPushButton::clicked, this, &QDialog::reject);
    connect(options_, &QPushButton::clicked, this, [this] { ToggleOptions(); });
    connect(pattern_, &QLineEdit::textChanged, this, [this] { Judge(); });
    connect(size_, &QCheckBox::toggled, this, [this](bool on) { SwitchSize(on); });
    connect(sizeMode_, &QComboBox::currentIndexChanged, this,
            [this](int mode) { SizeMode = mode == 0 ? 0 : 1; });
    connect(sizeNumber_, &QLineEdit::textChanged, this, [this] { TakeSize(); });
    connect(sizeUnit_, &QComboBox::currentIndexChanged, this, [this] { TakeUnit(); });
    connect(date_, &QCheckBox::toggled, this, [this](bool on) { SwitchDate(on); });
    connect(dateMode_, &QComboBox::currentIndexChanged, this,
            [this](int mode) { DateMode = mode == 0 ? 0 : 1; });
    for (const QDateEdit* day : {from_, to_}) {
        connect(day, &QDateEdit::dateChanged, this, [this] { TakeDates(); });
    }
}

void CTHNTFSFindFile::ToggleOptions() {
    const bool open = filters_->isHidden();
    filters_->setVisible(open);
    options_->setText(open ? tr("<<&Options") : tr("&Options>>"));
}

void CTHNTFSFindFile::SwitchSize(bool on) {
    SizeOn = on;
    sizeMode_->setEnabled(on);
    sizeNumber_->setEnabled(on);
    sizeUnit_->setEnabled(on);
    Judge();
}

void CTHNTFSFindFile::SwitchDate(bool on) {
    DateOn = on;
    dateMode_->setEnabled(on);
    from_->setEnabled(on);
    to_->setEnabled(on);
    TakeDates();
}

void CTHNTFSFindFile::TakeUnit() {
    sizeNumber_->setMaxLength(kUnits.at(static_cast<std::size_t>(sizeUnit_->currentIndex())).Digits);
    sizeNumber_->setText(QStringLiteral("0"));
}

void CTHNTFSFindFile::TakeSize() {
    SizeValue = sizeNumber_->text().toULongLong()
                << kUnits.at(static_cast<std::size_t>(sizeUnit_->currentIndex())).Shift;
    Judge();
}

void CTHNTFSFindFile::TakeDates() {
    DateFrom = DosDateOf(from_->date());
    DateTo = DosDateOf(to_->date());
}

void CTHNTFSFindFile::Judge() {
    search_->setEnabled(!pattern_->text().isEmpty() && (!SizeOn || (SizeValue > 0 && SizeValue <= kMaxSize)));
}

// Enter comes here past the button.
void CTHNTFSFindFile::accept() {
    if (!search_->isEnabled()) {
        return;
    }
    Pattern = pattern_->text().toStdString();
    MatchCase = matchCase_->isChecked();
    AllInOneList = oneList_->isChecked();
    QDialog::accept();
}

} // namespace thntfs
