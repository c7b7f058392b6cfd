#pragma once
// A page inside a page: shown over a placeholder of a TsSubHandlerPropertyPage,
// passing its changes on to that page.

#include <QWidget>

/// A page shown inside a TsSubHandlerPropertyPage; its changes arm the outer page.
class TsSubPropertyPage : public QWidget
{
    Q_OBJECT
public:
    TsSubPropertyPage(unsigned int templateId, unsigned int captionId);

    /// Sets the flag and tells the TsPropertyPage two parents up.
    virtual void Changed();
    /// Clears the flag and tells the TsPropertyPage two parents up.
    virtual void Unchanged();
    bool IsChanged() const { return mChanged; }
    /// Stores the sub-page; true here.
    virtual bool OnApply();
    unsigned int GetTemplateId() const { return mTemplateId; }
    unsigned int GetCaptionId() const { return mCaptionId; }

private:
    unsigned int mTemplateId;
    unsigned int mCaptionId;
    bool mChanged = false;
};
