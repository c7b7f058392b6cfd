#include <KORVAutlwin/options/TsPropertyPage.h>
#include <KORVAutlwin/options/TsSubPropertyPage.h>


namespace {

TsPropertyPage* OuterPage(QWidget* subPage)
{
    QWidget* parent = subPage->parentWidget();
    return parent ? dynamic_cast<TsPropertyPage*>(parent->parentWidget()) : nullptr;
}

} // namespace

TsSubPropertyPage::TsSubPropertyPage(unsigned int templateId, unsigned int captionId)
    : mTemplateId(templateId), mCaptionId(captionId)
{
}

void TsSubPropertyPage::Changed()
{
    mChanged = true;
    if (TsPropertyPage* page = OuterPage(this))
        page->Changed();
}

void TsSubPropertyPage::Unchanged()
{
    mChanged = false;
    if (TsPropertyPage* page = OuterPage(this))
        page->Unchanged();
}

bool TsSubPropertyPage::OnApply()
{
    return true;
}

