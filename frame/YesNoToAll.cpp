#include <KORVAutlwin/frame/YesNoToAll.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>

#include <KORVAutl/LanguageString.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr unsigned int kInvertedCaptions = 13343;
constexpr unsigned int kPlainCaptions = 13346;
constexpr int kButtonWidth = 60;
} // namespace

YesNoToAll::YesNoToAll(QWidget* parent, bool invert) : TsDialog(kTemplateId, parent)
{
    const unsigned int captions = invert ? kInvertedCaptions : kPlainCaptions;
    const int first = invert ? eNo : eYes;
    const int toAll = invert ? eNoToAll : eYesToAll;
    const int opposite = invert ? eYes : eNo;

    mText = new QLabel(this);
    mText->setTextFormat(Qt::PlainText);
    mText->setWordWrap(true);
    mText->setProperty("ctrlId", kTextCtrlId);

    auto makeButton = [this](int ctrlId, unsigned int caption, int result) {
        auto* button = new QPushButton(QString::fromUtf8(LanguageString::Get(caption)), this);
        button->setProperty("ctrlId", ctrlId);
        button->setMinimumWidth(FromDlgX(kButtonWidth));
        connect(button, &QPushButton::clicked, this, [this, result] { done(result); });
        return button;
    };
    QPushButton* toAllButton = makeButton(kToAllCtrlId, captions, toAll);
    QPushButton* oppositeButton = makeButton(kOppositeCtrlId, captions + 1, opposite);
    mFirst = makeButton(kFirstCtrlId, captions + 2, first);
    mFirst->setDefault(true);

    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(mFirst);
    row->addWidget(toAllButton);
    row->addWidget(oppositeButton);
    row->addStretch(1);

    auto* icon = new QLabel(this);
    icon->setObjectName(QStringLiteral("icon"));
    icon->setPixmap(korva::MessageBoxIcon(MB_ICONQUESTION, this));
    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addWidget(mText, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(row);
    setMinimumWidth(FromDlgX(220));
}

YesNoToAll::~YesNoToAll() = default;

int YesNoToAll::NewDoModal(const char* text, const char* title)
{
    mText->setText(QString::fromUtf8(text ? text : ""));
    setWindowTitle(QString::fromStdString(korva::MessageTitle(title)));
    return exec();
}

void YesNoToAll::setVisible(bool visible)
{
    TsDialog::setVisible(visible);
    if (visible && !mShown) {
        mShown = true;
        mFirst->setFocus();
    }
}

void YesNoToAll::reject()
{
    done(IDCANCEL);
}
