#include <KORVAutlwin/options/TsSubHandlerPropertyPage.h>
#include <KORVAutlwin/options/TsSubPropertyPage.h>

#include <QEvent>
#include <QVBoxLayout>

TsSubHandlerPropertyPage::TsSubHandlerPropertyPage(unsigned int placeholderId, unsigned int templateId,
                                                   unsigned int captionId, BasePropertyPageHelper* helper,
                                                   unsigned int helpTopicId)
    : TsPropertyPage(templateId, captionId, helper, helpTopicId), mPlaceholderId(placeholderId),
      mPlaceholder(new QWidget(this))
{
    mPlaceholder->setProperty("ctrlId", placeholderId);
    // Anchored top left to bottom right.
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mPlaceholder, 1);
    mPlaceholder->installEventFilter(this);
}

TsSubHandlerPropertyPage::~TsSubHandlerPropertyPage()
{
    if (mCurrent)
        mCurrent->setParent(nullptr);
}

void TsSubHandlerPropertyPage::SetCurrentSubPage(TsSubPropertyPage* page)
{
    if (page == mCurrent)
        return;
    if (mCurrent) {
        mCurrent->hide();
        mCurrent->setParent(nullptr);
    }
    mCurrent = page;
    if (mCurrent) {
        mCurrent->setParent(mPlaceholder);
        UpdateCurrentPageSize();
        mCurrent->show();
        // Forget a sub-page that its owner deletes.
        connect(mCurrent, &QObject::destroyed, this, [this, gone = mCurrent] {
            if (mCurrent == gone)
                mCurrent = nullptr;
        });
    }
}

void TsSubHandlerPropertyPage::UpdateCurrentPageSize()
{
    if (mCurrent)
        mCurrent->setGeometry(mPlaceholder->rect());
}

bool TsSubHandlerPropertyPage::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == mPlaceholder && event->type() == QEvent::Resize)
        UpdateCurrentPageSize();
    return TsPropertyPage::eventFilter(watched, event);
}

bool TsSubHandlerPropertyPage::OnSetActive()
{
    if (mCurrent)
        mCurrent->show();
    return TsPropertyPage::OnSetActive();
}

bool TsSubHandlerPropertyPage::OnKillActive()
{
    if (mCurrent)
        mCurrent->hide();
    return TsPropertyPage::OnKillActive();
}

bool TsSubHandlerPropertyPage::OnApply()
{
    if (!TsPropertyPage::OnApply())
        return false;
    return !mCurrent || mCurrent->OnApply();
}
