// EventInfoCreateModify: the editor's mailbox to the host, one event and the gap it was about.
// An event stays until another overwrites it; nothing here clears it after reading.
#pragma once

#include <gapeditor/EnumEventInfoCreateModify.h>
#include <gapeditor/EventIPRinfo.h>

class EventInfoCreateModify {
public:
    // Made on first use and never freed (hosts may read it during their own shutdown).
    static EventInfoCreateModify* getInstance();
    static EventInfoCreateModify* m_EventInfoCreateModify;

    EventInfoCreateModify() = default;
    EventInfoCreateModify& operator=(const EventInfoCreateModify&) = default;
    ~EventInfoCreateModify() {}

    void SetEventInfo(EnumEventInfoCreateModify event) { m_event = event; }
    EnumEventInfoCreateModify GetEventInfo() const { return m_event; }
    void SetIPRInfo(EventIPRinfo info) { m_info = info; }
    EventIPRinfo GetIPRInfo() const { return m_info; }

private:
    EnumEventInfoCreateModify m_event = EventNone;
    EventIPRinfo m_info;
};
