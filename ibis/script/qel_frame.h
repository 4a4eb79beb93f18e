// The call frame of the script functions: fetches the parameters, finds the file, runs one query into its
// record and gives the record's value. Nothing here knows the meaning of the data.

#pragma once

#include "ibis/interface/talibis.h"

#include <cstddef>
#include <new>
#include <optional>
#include <tuple>
#include <utility>

inline constexpr const char* FRAME_READ_FAILED = "File reading failed";
inline constexpr const char* FRAME_WRONG_PARAMETER = "Wrong parameter";

/// A parameter of the running call, released with this object.
class FRAME_Value
{
  public:
    FRAME_Value() noexcept = default;
    ~FRAME_Value()
    {
        if (mValue != nullptr) {
            qval_free_value(mValue);
        }
    }
    FRAME_Value(const FRAME_Value&) = delete;
    FRAME_Value& operator=(const FRAME_Value&) = delete;
    QVALUE* operator&() { return &mValue; }
    QVALUE get() const { return mValue; }

  private:
    QVALUE mValue = nullptr;
};

/// A string parameter; false with an error to the host if it is none. A string without text leaves `*out` as
/// it was.
bool FRAME_GetString(int index, FRAME_Value& value, const char** out);
/// An integer parameter; false without a word to the host if it is none.
bool FRAME_GetInteger(int index, int* out);
/// The kind that a file type word names, in exact case; none of the three gives `IBIS_FILE_NONE`.
ibis_file_type FRAME_FileType(const char* word);
/// The file of parameters 0 and 1, or null.
TalIbis* FRAME_GetIbis();

/// A parameter of a query, fetched from the frame.
template <class T> struct FRAME_Parameter;

template <> struct FRAME_Parameter<const char*> {
    FRAME_Value value;
    const char* data = nullptr;
    bool fetch(int index) { return FRAME_GetString(index, value, &data); }
};

template <> struct FRAME_Parameter<int> {
    int data = 0;
    bool fetch(int index) { return FRAME_GetInteger(index, &data); }
};

/// The script function of one query of `TalIbis`: its parameters but the last, which is the record, come from
/// the frame behind file name and file type.
template <auto Query> struct FRAME_Function;

template <class... Args, void (TalIbis::*Query)(Args...) const> struct FRAME_Function<Query> {
    static constexpr std::size_t COUNT = sizeof...(Args) - 1;
    using Types = std::tuple<Args...>;
    using Record = std::remove_reference_t<std::tuple_element_t<COUNT, Types>>;

    /// Null when memory is out.
    static QVALUE call() noexcept
    try {
        return callWith(std::make_index_sequence<COUNT>());
    } catch (const std::bad_alloc&) {
        return nullptr;
    }

  private:
    template <std::size_t... Index> static QVALUE callWith(std::index_sequence<Index...>)
    {
        const TalIbis* const file = FRAME_GetIbis();
        Record record;
        if (file == nullptr) {
            record.setUnformatedError(QueryError, FRAME_READ_FAILED);
            return record.createQval();
        }
        [[maybe_unused]] std::tuple<FRAME_Parameter<std::tuple_element_t<Index, Types>>...> parameters;
        if ((std::get<Index>(parameters).fetch(static_cast<int>(Index) + 2) && ...)) {
            (file->*Query)(std::get<Index>(parameters).data..., record);
        } else {
            record.setUnformatedError(QueryError, FRAME_WRONG_PARAMETER);
        }
        return record.createQval();
    }
};
