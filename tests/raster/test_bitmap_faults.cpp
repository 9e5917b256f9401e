// Every read and every write of the store fails once, and once for good: what failed is reported, nothing is left open.
#include <gtest/gtest.h>

#include "raster/BitmapFile.h"

using namespace morvil;
using test::BitmapFile;
using test::FailingCalls;
using test::Fault;
using test::Workspace;
using Bytes = std::vector<std::uint8_t>;

namespace {

// Every operation that touches the file, each on rows that lie in several blocks. True when all of them say that they are done.
bool workOn(FileStream& stream) {
    CBM store;
    store.setStream(&stream);
    bool done = store.CreateBitmap(kBlackWhite, 8000, 1500);
    done = store.Fill(kWhite) && done;
    Bytes buffer(std::size_t{1001} * 1500);
    std::uint32_t firstBit = 0;
    done = store.WriteBitmapPart1BPP(buffer.data(), 3, 4000, 1400, 5, 50) && done;
    done = store.ReadBitmapPart1BPP(buffer.data(), firstBit, 100, 3, 5, 5) && done;
    done = store.WriteBitmapPart8BPP(buffer.data(), 0, 10, 2, 5, 5) && done;
    done = store.ReadBitmapPart8BPP(buffer.data(), firstBit, 10, 2, 5, 5) && done;
    done = store.WriteRow(buffer.data(), 7, false) && store.ReadRow(buffer.data(), 7, false) && done;
    done = store.Seek(1, 1) && store.SetPixel(0) && done;
    ContentBox box{};
    done = store.GetBoundingBox(box) && done;
    return store.WriteBitmap(buffer.data()) && done;
}

}  // namespace

TEST(BitmapFaults, each_failing_read_or_write_is_reported) {
    Workspace workspace;
    workspace.switchLogOff();
    for (const char* const call : {"read", "write"}) {
        for (const Fault fault : {Fault::Transient, Fault::Persistent}) {
            int visited = 0;
            for (int n = 1;; ++n) {
                FileStream stream(test::kBitmapPath, OpenMode::Create);
                bool done = false;
                int fired = 0;
                {
                    FailingCalls faults(n, fault, call);
                    done = workOn(stream);
                    fired = faults.fired();
                }
                EXPECT_EQ(done, fired == 0) << call << " " << n;
                EXPECT_EQ(stream.failed(), fired != 0) << call << " " << n;
                if (fired == 0) break;
                ++visited;
            }
            EXPECT_GT(visited, 5) << call;
        }
    }
}
