#include <KORVAutlwin/frame/AboutDialog.h>

#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsString.h>
#include <KORVAutl/TsSystemInfo.h>

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr unsigned int kDefaultBitmap = 13024;
constexpr unsigned int kDetailsButton = 13181;
constexpr unsigned int kTitle = 13183;
constexpr unsigned int kVersion = 13186;
constexpr unsigned int kLibraries = 13241;
constexpr unsigned int kPngLibrary = 13242;

} // namespace

AboutDialog::AboutDialog(QWidget* parent, const char* appName, unsigned int bitmapId)
    : AboutDialog(parent, appName, bitmapId, nullptr, nullptr, false)
{
}

AboutDialog::AboutDialog(QWidget* parent, const char* appName, unsigned int bitmapId, const char* text1,
                         const char* text2, bool showDetailsButton)
    : TsDialog(kTemplateId, parent), mAppName(appName ? appName : ""), mBitmapId(bitmapId)
{
    if (mAppName.empty())
        mAppName = WinApp::GetApp() ? WinApp::GetApp()->GetAppName() : TsSystemInfo::GetApplicationName();
    if (mBitmapId == static_cast<unsigned int>(-1) || mBitmapId == static_cast<unsigned int>(-2))
        mBitmapId = kDefaultBitmap;
    Build(text1, text2, showDetailsButton);
}

void AboutDialog::Build(const char* text1, const char* text2, bool showDetailsButton)
{
    setWindowTitle(QString::fromStdString(TsString::Format(kTitle, mAppName.c_str())));

    auto* picture = new QLabel(this);
    picture->setPixmap(QPixmap::fromImage(GUIUtilities::LoadPicture(mBitmapId)));
    picture->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    picture->setProperty("ctrlId", 1000);

    auto* name = new QLabel(QString::fromStdString(mAppName), this);
    QFont nameFont = name->font();
    nameFont.setBold(true);
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.6);
    name->setFont(nameFont);
    const bool dark = palette().color(QPalette::Window).lightness() < 128;
    QPalette namePalette = name->palette();
    namePalette.setColor(QPalette::WindowText, GUIUtilities::FromColorRef(dark ? kProductColorDark : kProductColor));
    name->setPalette(namePalette);
    name->setObjectName(QStringLiteral("productName"));

    const std::string version = TsString::Format(
        kVersion, TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionLong).c_str());
    auto* versionLabel = new QLabel(QString::fromStdString(version), this);
    versionLabel->setObjectName(QStringLiteral("version"));

    auto* text = new QVBoxLayout;
    text->addWidget(name);
    text->addWidget(versionLabel);
    for (const char* line : {text1, text2})
        if (line && *line)
            text->addWidget(new QLabel(QString::fromUtf8(line), this));
    auto* libraries = new QLabel(
        QString::fromUtf8(LanguageString::Get(kLibraries)) + QLatin1Char('\n') + QString::fromUtf8(LanguageString::Get(kPngLibrary)),
        this);
    libraries->setWordWrap(true);
    libraries->setObjectName(QStringLiteral("libraries"));
    text->addSpacing(8);
    text->addWidget(libraries);
    text->addStretch(1);

    auto* top = new QHBoxLayout;
    top->addWidget(picture);
    top->addSpacing(12);
    top->addLayout(text, 1);

    mDetails = new QPlainTextEdit(this);
    mDetails->setReadOnly(true);
    mDetails->hide();

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    mDetailsButton = buttons->addButton(QString::fromUtf8(LanguageString::Get(kDetailsButton)),
                                        QDialogButtonBox::ActionRole);
    mDetailsButton->setVisible(showDetailsButton);
    connect(mDetailsButton, &QPushButton::clicked, this, &AboutDialog::ToggleDetails);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(mDetails, 1);
    layout->addWidget(buttons);
    setMinimumWidth(FromDlgX(260));
}

void AboutDialog::SetDetailsButtonText(const char* text)
{
    mDetailsButton->setText(QString::fromUtf8(text ? text : ""));
    mDetailsButton->setVisible(true);
}

void AboutDialog::SetDetailsText(const char* text)
{
    mDetails->setPlainText(QString::fromUtf8(text ? text : ""));
    mDetailsButton->setVisible(true);
}

void AboutDialog::ToggleDetails()
{
    mDetails->setVisible(!mDetails->isVisible());
    adjustSize();
}
