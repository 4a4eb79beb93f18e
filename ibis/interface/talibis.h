// The front door: a host asks for a file by name and kind and gets a handle that answers queries, and the
// findings of the read. Handles are cached by name and made anew when the file changes.
//
// One thread, one read at a time. No exception leaves this interface.
//
//     TalIbis* file = nullptr;
//     const IbisErrorContainer* findings = talReadIbisFile("u1.ibs", IBIS_FILE_IBS, &file);

#pragma once

#include "ibis/interface/talibis_query.h"
#include "ibis/source/nuibis_errors.h"
#include "ibis/source/nuibis_types.h"

#include <string>
#include <unordered_map>
#include <vector>

struct CMPNT;
struct PIN;
struct PKG;
struct ibis;
struct msel;
struct nuibis_mdl;
struct rng;
enum numstat : std::int32_t;

/// One file that was read. Owned by the file manager; a host never frees one. Copies share what it points to.
///
/// Queries take their record by reference, clear it first and report only through it. A name that is not in
/// the file gives status -1 and a text.
class TALIBIS_API TalIbis
{
  public:
    TalIbis() noexcept = default;
    /// Keeps the interned name; the time stamp is that of the file's last change, 0 when it cannot be told.
    TalIbis(const char* fileName, ibis_file_type type, ibis_ver version);

    void setIbis(ibis* root) { pIbis = root; }
    ibis* getIbis() const { return pIbis; }
    const char* getFileName() const { return pszFileName; }
    ibis_file_type getFileType() const { return eFileType; }
    ibis_ver getVersion() const { return eVersion; }
    /// Keeps a deep copy of the findings.
    void setErrorContainer(const IbisErrorContainer& errors);
    IbisErrorContainer* getErrorContainer() const { return pErrors; }
    /// Seconds since the epoch.
    std::int64_t getFileTimeStamp() const { return tTimeStamp; }
    void setFileTimeStamp(std::int64_t seconds) { tTimeStamp = seconds; }

    // Components and pins: [Component], [Package], [Pin], [Pin Mapping]
    // ------------------------------------------

    /// The names of the components in file order; status 1 when there is none.
    void getCompList(TalIbisListQueryData& list) const;
    /// The same into a vector, emptied first.
    void getCompListQt(std::vector<std::string>* names) const;
    /// The pin names of a component in file order; an unknown component gives an empty list.
    void getPinList(const char* component, TalIbisListQueryData& list) const;
    /// Copies the name of the pin of 0-based `index` among those whose model is of `type`; `MODEL_UNSEEN`
    /// counts every pin. `out` has room for 6 characters. False when there is no such pin.
    bool getPinName(const char* component, nuibis_model_type type, int index, char* out) const;
    /// The same walk; copies the pin's model name. `out` has room for 41 characters.
    bool getModelName(const char* component, nuibis_model_type type, int index, char* out) const;
    /// Three parallel vectors, emptied first, one entry a pin.
    void getPinModelListQt(std::vector<std::string>* pins, std::vector<std::string>* signals,
                           std::vector<std::string>* models, const char* component) const;
    /// Report table of a pin's five references; empty for a pin without a mapping.
    void getPinMapping(const char* component, const char* pin, TalIbisListQueryData& list) const;
    /// Four plain strings: pullup, pulldown, power clamp, gnd clamp reference.
    void getPinMappingL(const char* component, const char* pin, TalIbisListQueryData& list) const;

    // Pin parasitics, in Ohm, H and F, as text: a number, "NA", or empty when not given.
    void getR_pin(const char* component, const char* pin, TalIbisStringQueryData& result) const;
    void getL_pin(const char* component, const char* pin, TalIbisStringQueryData& result) const;
    void getC_pin(const char* component, const char* pin, TalIbisStringQueryData& result) const;
    // Package parasitics. `corner` is "Typ", "Min", "Max" or "Empty"; a corner that is no number gives typ.
    void getR_pkg(const char* component, const char* corner, TalIbisStringQueryData& result) const;
    void getL_pkg(const char* component, const char* corner, TalIbisStringQueryData& result) const;
    void getC_pkg(const char* component, const char* corner, TalIbisStringQueryData& result) const;

    /// The version as the file's [IBIS Ver] line has it, read from the file itself.
    void getVersionString(TalIbisStringQueryData& result) const;
    /// Runs the end-of-file checks of one component anew. Gives the shared container, reset before.
    const IbisErrorContainer* testComponent(const char* component) const;

    // Models ------------------------------------------------------------------------------------------------

    /// `name` is a model of `type`, or a model selector with an entry of `type`.
    bool isModelType(const char* name, nuibis_model_type type) const;

  private:
    CMPNT* findComp(const char* name) const;
    nuibis_mdl* findModel(const char* name) const;
    msel* findModelSelector(const char* name) const;
    PIN* findPin(const CMPNT* component, const char* name) const;

    CMPNT* findCompOrReport(const char* name, TalIbisQueryData& record) const;
    const PIN* findPinOfType(const char* component, nuibis_model_type type, int index) const;
    void getPinValue(const char* component, const char* pin, double PIN::*value, numstat PIN::*status,
                     TalIbisStringQueryData& result) const;
    void getPackageValue(const char* component, const char* corner, rng* PKG::*values,
                         TalIbisStringQueryData& result) const;

    const char* pszFileName = nullptr;
    ibis_file_type eFileType = IBIS_FILE_NONE;
    ibis* pIbis = nullptr;
    ibis_ver eVersion = IBIS_VER_NONE;
    IbisErrorContainer* pErrors = nullptr;
    std::int64_t tTimeStamp = 0;

    friend class TalIbisFileManager;
};

/// Handles by interned name. The file type is no part of the key.
class TALIBIS_API TalIbisMapping
{
  public:
    void add(const char* name, ibis_file_type type, TalIbis* ibis);
    /// The handle of an interned name, or null.
    TalIbis* find(const char* name) const;
    void erase(const char* name);

  protected:
    std::unordered_map<const char*, TalIbis*> handles;
};

/// The process-wide owner of all handles.
class TALIBIS_API TalIbisFileManager : public TalIbisMapping
{
  public:
    /// The one manager, made on first call; null only when memory is out.
    static TalIbisFileManager* getInstance();
    /// Releases all handles and the root read last.
    static void destroyInstance();
    TalIbisFileManager(const TalIbisFileManager&) = delete;
    TalIbisFileManager& operator=(const TalIbisFileManager&) = delete;

    /// The handle of a file: the cached one while the file on disk is unchanged, otherwise read anew. Null
    /// when the file cannot be read; the findings then are in the global container.
    TalIbis* getIbis(const char* name, ibis_file_type type);
    /// Reads a file into a new root, clearing the global container first. A null version pointer is allowed.
    bool readIbisFile(const char* name, ibis_file_type type, ibis_ver* version);
    /// Version that the last read found by looking at the file's first keyword.
    static ibis_ver getSniffedVersion();

  private:
    TalIbisFileManager() = default;
    ~TalIbisFileManager();
    static bool validateFile(const char* name, ibis_file_type type);
    static bool doReadIbisFile(const char* name, ibis_file_type type);
    void drop(const char* name, TalIbis* handle);
    static void release(TalIbis* handle);

    friend TALIBIS_API const IbisErrorContainer* talReadParameterFile(const char* name, ibis_file_type type);
};

/// Reads a file, or finds it in the cache, and gives its findings. With a null `out` nothing is read. `*out`
/// is null when the file could not be read; what speaks of it then is in the result.
TALIBIS_API const IbisErrorContainer* talReadIbisFile(const char* name, ibis_file_type type, TalIbis** out);
/// The findings of a handle (may be null); for a null handle those of the last read.
TALIBIS_API const IbisErrorContainer* talGetIbisError(const TalIbis* ibis);
