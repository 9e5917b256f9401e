// ShrinkJob.h - fixture of the tests that shrink jobs to the box of what was drawn.
#pragma once

#include <algorithm>
#include <functional>

#include "jobfile/PageJob.h"

namespace morvil::test {

class ShrinkJob : public PageJob {
  protected:
    ShrinkJob() { config.flags = MV_FL_SHRINK_TO_BOUNDING_BOX; }

    // The polygons and curve of a job, then its page, then completion.
    std::string shrunk(const std::string& rows, const std::function<void(CSpoolFile&)>& draw = {}) {
        for (const std::string& file : spoolFiles()) DeleteFileW(inSpool(fromUtf8(file)).c_str());
        const auto writer = begin(1);
        if (draw) draw(*writer);
        EXPECT_TRUE(rows.empty() || sendPage(*writer, rows));
        clearLog();
        writer->Complete();
        m_completionLog = messages();
        return finished(*writer);
    }
    [[nodiscard]] bool completionLogged(const std::string& message) const {
        return std::find(m_completionLog.begin(), m_completionLog.end(), message) != m_completionLog.end();
    }
    static std::string sizeLine(const std::string& job) {
        const std::size_t at = job.find("<Size:");
        return at == std::string::npos ? std::string() : job.substr(at, job.find("\r\n", at) - at);
    }

    std::vector<std::string> m_completionLog;
};

// 16 x 8 pixels; the content stands in columns 6 to 9 of rows 2 and 3.
inline const std::vector<std::string> kShrinkPicture{
    "................", "................", "......##........", "......#..#......",
    "................", "................", "................", "................",
};

}  // namespace morvil::test
