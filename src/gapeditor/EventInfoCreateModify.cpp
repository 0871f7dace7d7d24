#include <gapeditor/EventInfoCreateModify.h>

EventInfoCreateModify* EventInfoCreateModify::m_EventInfoCreateModify = nullptr;

EventInfoCreateModify* EventInfoCreateModify::getInstance() {
    if (!m_EventInfoCreateModify) {
        m_EventInfoCreateModify = new EventInfoCreateModify();
    }
    return m_EventInfoCreateModify;
}
