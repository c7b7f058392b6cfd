#pragma once
/// \class UserComm
/// The process-wide channel through which code without a window of its own asks
/// and informs the user. The application installs an implementation (dialogs,
/// silent collection, ...); code below it only calls GetUserComm().

#include <functional>

/// Answer codes, for results and for `defaultAnswer` (0: no default).
enum EUserAnswer
{
    eNoDefault = 0,
    eYes = 1,
    eYesToAll = 2,
    eNo = 3,
    eNoToAll = 4,
    eCancel = 5
};

class UserComm
{
public:
    /// The current channel; null until an application installs one.
    static UserComm* GetUserComm();
    /// Installs `channel` (may be null) and returns the one that stood there before.
    static UserComm* SetUserComm(UserComm* channel);

    virtual ~UserComm();

    virtual int AskUserYesNo(const char* question, const char* details, const char* title, int defaultAnswer) = 0;
    virtual int AskUserYesNo(const char* question, const char* title, int defaultAnswer) = 0;
    virtual int AskUserYesYesToAllNoNoToAllCancel(const char* question, const char* details, const char* title,
                                                  int defaultAnswer) = 0;
    virtual int AskUserYesYesToAllCancel(const char* question, const char* details, const char* title,
                                         int defaultAnswer) = 0;
    virtual int AskUserYesCancel(const char* question, const char* details, const char* title, int defaultAnswer) = 0;
    /// Reports a fatal error; returns, it does not end the process.
    virtual void FatalError(const char* text, const char* title) = 0;
    /// Tells the user a fact. A non-zero `silenceId` marks an inform the user may silence for good.
    virtual void InformUser(const char* text, const char* title, unsigned long silenceId) = 0;
    virtual void HourGlassOn() = 0;
    virtual void HourGlassOff() = 0;

protected:
    UserComm() = default;
    UserComm(const UserComm&) = default;
    UserComm& operator=(const UserComm&) = default;
};

/// The channel of a program without windows: it asks nobody (two-answer
/// questions get No, the others Cancel) and hands every inform and fatal error
/// to `tell`. It is the current channel for its lifetime and puts back the one
/// before it at its end.
class TellingUserComm : public UserComm
{
public:
    using Tell = std::function<void(const char* text)>;

    explicit TellingUserComm(Tell tell);
    ~TellingUserComm() override;
    TellingUserComm(const TellingUserComm&) = delete;
    TellingUserComm& operator=(const TellingUserComm&) = delete;

    int AskUserYesNo(const char*, const char*, const char*, int) override { return eNo; }
    int AskUserYesNo(const char*, const char*, int) override { return eNo; }
    int AskUserYesYesToAllNoNoToAllCancel(const char*, const char*, const char*, int) override { return eCancel; }
    int AskUserYesYesToAllCancel(const char*, const char*, const char*, int) override { return eCancel; }
    int AskUserYesCancel(const char*, const char*, const char*, int) override { return eCancel; }
    void FatalError(const char* text, const char*) override { mTell(text ? text : ""); }
    void InformUser(const char* text, const char*, unsigned long) override { mTell(text ? text : ""); }
    void HourGlassOn() override {}
    void HourGlassOff() override {}

private:
    Tell mTell;
    UserComm* mPrevious;
};
