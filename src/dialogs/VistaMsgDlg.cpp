#include "dialogs/VistaMsgDlg.h"

#include "dialogs/HelpViewer.h"
#include "shell/Settings.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace thntfs {

namespace {

const QString kNoticeKey = QStringLiteral("VistaMsg/StartUp");
constexpr QPoint kIconPlace(12, 25);
constexpr int kNoticeGap = 14;
constexpr int kNoticeTextWidth = 380;

} // namespace

CVistaMsgDlg::CVistaMsgDlg(QWidget* owner)
    : QDialog(owner)
    , wanted_(OpenSettings().value(kNoticeKey, 0).toInt() != 0) {
    setWindowTitle(tr("Information"));
    auto* upper = new QHBoxLayout;
    upper->setSpacing(kNoticeGap);
    upper->addWidget(Icon(), 0, Qt::AlignTop);
    upper->addLayout(Texts(), 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kIconPlace.x(), kIconPlace.y(), kIconPlace.x(), kIconPlace.x());
    layout->setSpacing(kNoticeGap);
    layout->addLayout(upper);
    layout->addLayout(LowerPart());
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

CVistaMsgDlg::~CVistaMsgDlg() { OpenSettings().setValue(kNoticeKey, wanted_ ? 1 : 0); }

QWidget* CVistaMsgDlg::Icon() {
    const int pixels = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    auto* icon = new QLabel;
    icon->setPixmap(style()
                        ->standardIcon(QStyle::SP_MessageBoxInformation, nullptr, this)
                        .pixmap(QSize(pixels, pixels), devicePixelRatioF()));
    return icon;
}

QLayout* CVistaMsgDlg::Texts() {
    auto* texts = new QVBoxLayout;
    for (const QString& text :
         {tr("Software has detected windows Vista Operating System."),
          tr("For effective functioning please make sure that you are logged in as \u201Clocal system "
             "administrator\u201D and you have disabled the UAC account. Please visit our knowledge base "
             "section for more details on how to disable UAC account from this link")}) {
        auto* label = new QLabel(text);
        label->setWordWrap(true);
        label->setFixedWidth(kNoticeTextWidth);
        texts->addWidget(label);
    }
    auto* link = new QLabel(QStringLiteral("<a href=\"faq.htm\">%1</a>").arg(tr("Questions and answers")));
    link->setTextInteractionFlags(Qt::TextBrowserInteraction);
    link->setFocusPolicy(Qt::StrongFocus);
    connect(link, &QLabel::linkActivated, this, [](const QString& topic) { ShowHelp(topic); });
    texts->addWidget(link, 0, Qt::AlignLeft);
    return texts;
}

QLayout* CVistaMsgDlg::LowerPart() {
    auto* notAgain = new QCheckBox(tr("&Do not show again"));
    connect(notAgain, &QCheckBox::toggled, this, [this](bool ticked) { wanted_ = !ticked; });
    auto* close = new QPushButton(tr("&Close"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, [this] { accept(); });
    auto* line = new QHBoxLayout;
    line->addWidget(notAgain, 1);
    line->addWidget(close);
    return line;
}

} // namespace thntfs
