#pragma once
// Something that wants to hear when a helper stored its pages' result, such as
// a view showing the edited object or the modeless sheet rebuilding its pages.

class BasePropertyPageHelper;

/// A listener of one BasePropertyPageHelper, told after each of its updates.
class PropertyPageListener
{
public:
    PropertyPageListener();
    PropertyPageListener(const PropertyPageListener&) = delete;
    PropertyPageListener& operator=(const PropertyPageListener&) = delete;
    /// Leaves the helper's list.
    virtual ~PropertyPageListener();

    /// The helper is going away; the pointer is already cleared. Nothing here.
    virtual void OnDisconnect();
    /// True skips the helper's updates. False here.
    virtual bool IsIgnoreListenerUpdates() const;
    /// The helper stored a result. Nothing here.
    virtual void ListenerUpdate();

    /// Leaves any present helper and joins `helper` (null: none).
    void Connect(BasePropertyPageHelper* helper);
    /// Forgets the helper; unless `helperIsGoing`, the helper forgets this listener too.
    void Disconnect(bool helperIsGoing);
    BasePropertyPageHelper* GetHelper() const { return mHelper; }
    bool IsConnected() const { return mHelper != nullptr; }
    /// Runs the helper's Update without telling this listener, which caused it;
    /// true with no helper.
    bool UpdateHelper();

private:
    friend class BasePropertyPageHelper;
    BasePropertyPageHelper* mHelper = nullptr;
};
