// Hands bands of decoded rows from the thread that decodes to the one that shrinks and codes them,
// so that both work at a time. A few buffers go round; a picture of any height needs no more memory
// than that.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace transforms {

class BandPipe {
public:
    // `decode` runs on a thread of its own: it gets buffers from Empty until that returns null,
    // fills each and passes it on with Fill. What it throws, Full throws in the consumer.
    BandPipe(std::size_t bandBytes, std::function<void(BandPipe&)> decode);
    ~BandPipe(); // stops the decoder and waits for it
    BandPipe(const BandPipe&) = delete;
    BandPipe& operator=(const BandPipe&) = delete;

    // The decoder's side. Null when the consumer has stopped.
    std::uint8_t* Empty();
    void Fill();

    // The consumer's side. Null after the last band; the buffer is valid until the next call.
    const std::uint8_t* Full();

private:
    static constexpr std::size_t Count = 4;

    void Run(const std::function<void(BandPipe&)>& decode);

    std::vector<std::uint8_t> bands_[Count];
    std::mutex lock_;
    std::condition_variable changed_;
    std::size_t filled_ = 0, taken_ = 0; // bands since the start
    bool held_ = false;                  // the consumer has a band
    bool ended_ = false, stopped_ = false;
    std::exception_ptr failure_;
    std::thread thread_; // last: it uses all of the above
};

} // namespace transforms
