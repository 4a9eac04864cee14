// Reads the pages of the compact unwind information, of both forms.
#include "loader/compact_unwind.h"

#include <cstring>
#include <utility>

namespace lumo::macos {
namespace {

constexpr std::uint32_t has_lsda = 0x40000000;

class Reader {
public:
    Reader(const Image& image, const Section& section)
        : image_(image), info_(image.at(section.address)),
          head_(*reinterpret_cast<const UnwindHeader*>(info_)) {}

    std::vector<UnwindRecord> read() {
        const auto* index = at<UnwindIndex>(head_.index);
        for (std::uint32_t i = 0; i + 1 < head_.index_count; ++i) {
            if (index[i].page != 0) {
                read_page(index[i]);
            }
        }
        end_ = index[head_.index_count - 1].function;
        for (std::size_t i = 0; i < records_.size(); ++i) {
            const auto next = i + 1 < records_.size()
                                  ? records_[i + 1].start
                                  : reinterpret_cast<std::uint64_t>(image_.base) + end_;
            records_[i].size = next - records_[i].start;
        }
        return std::move(records_);
    }

private:
    template <class Type>
    const Type* at(std::uint32_t offset) const {
        return reinterpret_cast<const Type*>(info_ + offset);
    }

    void read_page(const UnwindIndex& index) {
        const auto& page = *at<UnwindPage>(index.page);
        const auto* words = at<std::uint32_t>(index.page + page.entries);
        for (std::uint32_t i = 0; i < page.entry_count; ++i) {
            if (page.kind == 2) {
                add(words[std::size_t{2} * i], words[std::size_t{2} * i + 1]);
                continue;
            }
            const std::uint32_t number = words[i] >> 24, common = head_.common_encoding_count;
            add(index.function + (words[i] & 0xffffff),
                number < common ? at<std::uint32_t>(head_.common_encodings)[number]
                                : at<std::uint32_t>(index.page + page.encodings)[number - common]);
        }
    }

    void add(std::uint32_t function, std::uint32_t encoding) {
        UnwindRecord record{reinterpret_cast<std::uint64_t>(image_.base) + function, 0, encoding, 0,
                            0};
        if (const std::uint32_t number = encoding >> 28 & 3; number != 0) {
            const auto slot = at<std::uint32_t>(head_.personalities)[number - 1];
            std::memcpy(&record.personality, image_.base + slot, 8);
        }
        if (encoding & has_lsda) {
            record.lsda = reinterpret_cast<std::uint64_t>(image_.base) + lsda_of(function);
        }
        records_.push_back(record);
    }

    std::uint32_t lsda_of(std::uint32_t function) const {
        const auto* index = at<UnwindIndex>(head_.index);
        const auto* lsda = at<UnwindLsda>(index[0].lsdas);
        const auto* end = at<UnwindLsda>(index[head_.index_count - 1].lsdas);
        for (; lsda != end; ++lsda) {
            if (lsda->function == function) {
                return lsda->lsda;
            }
        }
        give_up(image_.path + " lacks the exception table of a function");
    }

    const Image& image_;
    const char* info_;
    const UnwindHeader& head_;
    std::uint32_t end_ = 0;
    std::vector<UnwindRecord> records_;
};

} // namespace

std::vector<UnwindRecord> read_compact_unwind(const Image& image, const Section& section) {
    return Reader(image, section).read();
}

} // namespace lumo::macos
