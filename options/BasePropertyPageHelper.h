#pragma once
// Connects a set of property pages to the object that they edit: counts the
// changed pages, so that only the last one to apply stores the result, and
// tells its listeners when it did.

#include <vector>

class PropertyPageListener;

/// The link between a set of property pages and the object they edit: a count
/// of changed pages and the listeners told after each update.
class BasePropertyPageHelper
{
public:
    /// `param` is kept and never read here; a derived helper may use it.
    explicit BasePropertyPageHelper(unsigned long param = 0);
    BasePropertyPageHelper(const BasePropertyPageHelper&) = delete;
    BasePropertyPageHelper& operator=(const BasePropertyPageHelper&) = delete;
    /// Clears every listener's helper and calls its OnDisconnect.
    virtual ~BasePropertyPageHelper();

    /// True when at least one page is changed.
    virtual bool IsChanged() const;
    /// Stores the pages' result in the edited object; here it only tells the
    /// listeners. False keeps the last changed page changed.
    virtual bool Update();

    /// One more changed page.
    void AddUpdate() { ++mUpdates; }
    /// One changed page less; never below 0.
    void RemoveUpdate()
    {
        if (mUpdates > 0)
            --mUpdates;
    }
    /// The number of changed pages.
    int Connected() const { return mUpdates; }
    unsigned long GetParam() const { return mParam; }

    /// Enters `listener` once; used by PropertyPageListener::Connect.
    void AddListener(PropertyPageListener* listener);
    /// Forgets `listener`; used by PropertyPageListener::Disconnect.
    void RemoveListener(PropertyPageListener* listener);
    /// Calls ListenerUpdate on every listener that does not ignore updates, on
    /// a copy of the list, so that a listener may disconnect meanwhile.
    void UpdateListeners();
    const std::vector<PropertyPageListener*>& GetListeners() const { return mListeners; }

private:
    int mUpdates = 0;
    std::vector<PropertyPageListener*> mListeners;
    unsigned long mParam;
};
