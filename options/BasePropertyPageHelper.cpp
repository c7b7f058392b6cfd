#include <KORVAutlwin/options/BasePropertyPageHelper.h>
#include <KORVAutlwin/options/PropertyPageListener.h>

#include <algorithm>

BasePropertyPageHelper::BasePropertyPageHelper(unsigned long param) : mParam(param) {}

BasePropertyPageHelper::~BasePropertyPageHelper()
{
    const std::vector<PropertyPageListener*> listeners = mListeners;
    mListeners.clear();
    for (PropertyPageListener* listener : listeners) {
        listener->mHelper = nullptr;
        listener->OnDisconnect();
    }
}

bool BasePropertyPageHelper::IsChanged() const
{
    return mUpdates > 0;
}

bool BasePropertyPageHelper::Update()
{
    UpdateListeners();
    return true;
}

void BasePropertyPageHelper::AddListener(PropertyPageListener* listener)
{
    if (std::find(mListeners.begin(), mListeners.end(), listener) == mListeners.end())
        mListeners.push_back(listener);
}

void BasePropertyPageHelper::RemoveListener(PropertyPageListener* listener)
{
    mListeners.erase(std::remove(mListeners.begin(), mListeners.end(), listener), mListeners.end());
}

void BasePropertyPageHelper::UpdateListeners()
{
    const std::vector<PropertyPageListener*> listeners = mListeners;
    for (PropertyPageListener* listener : listeners)
        if (!listener->IsIgnoreListenerUpdates())
            listener->ListenerUpdate();
}

PropertyPageListener::PropertyPageListener() = default;

PropertyPageListener::~PropertyPageListener()
{
    if (mHelper)
        mHelper->RemoveListener(this);
}

void PropertyPageListener::OnDisconnect() {}

bool PropertyPageListener::IsIgnoreListenerUpdates() const
{
    return false;
}

void PropertyPageListener::ListenerUpdate() {}

void PropertyPageListener::Connect(BasePropertyPageHelper* helper)
{
    if (mHelper)
        Disconnect(false);
    mHelper = helper;
    if (mHelper)
        mHelper->AddListener(this);
}

void PropertyPageListener::Disconnect(bool helperIsGoing)
{
    if (mHelper && !helperIsGoing)
        mHelper->RemoveListener(this);
    mHelper = nullptr;
}

bool PropertyPageListener::UpdateHelper()
{
    if (!mHelper)
        return true;
    BasePropertyPageHelper* helper = mHelper;
    helper->RemoveListener(this);
    const bool result = helper->Update();
    // The update may have cleared or replaced the helper.
    if (mHelper == helper)
        helper->AddListener(this);
    return result;
}
