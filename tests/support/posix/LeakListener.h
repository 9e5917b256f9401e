// LeakListener.h - fails a test that leaves more behind than it found: blocks, handles, open files, held mutexes, loaded
// libraries, an impersonation.
#pragma once

#include <gtest/gtest.h>

#include "platform/posix/HostState.h"

namespace morvil::test {

class LeakListener : public testing::EmptyTestEventListener {
  public:
    void OnTestStart(const testing::TestInfo&) override { m_before = outstanding(); }
    void OnTestEnd(const testing::TestInfo&) override {
        const Outstanding now = outstanding();
        expectNoMore("blocks", m_before.blocks, now.blocks);
        expectNoMore("handles", m_before.handles, now.handles);
        expectNoMore("open files", m_before.files, now.files);
        expectNoMore("held mutexes", m_before.heldMutexes, now.heldMutexes);
        expectNoMore("libraries", m_before.libraries, now.libraries);
        expectNoMore("impersonations", m_before.impersonations, now.impersonations);
    }

  private:
    static void expectNoMore(const char* what, std::size_t before, std::size_t now) {
        if (now > before) ADD_FAILURE() << "the test left " << now - before << " " << what << " behind";
    }

    Outstanding m_before;
};

}  // namespace morvil::test
