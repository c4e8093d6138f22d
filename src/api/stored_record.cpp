#include "api/stored_record.h"

#include <stdexcept>
#include <string>

#include "persistence/archive/archives.h"

// Keys, their order and their versions are the format of stored models.

template <class Archive>
void ZOR::serialize(Archive& archive, unsigned int version) {
  using boost::serialization::make_nvp;
  archive& make_nvp("number_parallel_outputs_", number_parallel_outputs_);
  archive& make_nvp("settings_", settings_);
  if (version >= 1) {
    archive& make_nvp("num_inputs_", num_inputs_);
    archive& make_nvp("num_outputs_", num_outputs_);
    archive& make_nvp("input_names_", input_names_);
    archive& make_nvp("output_names_", output_names_);
  }
  if (version < 2) {  // a text that was stored with the record once
    std::string last_error;
    archive& make_nvp("old_last_error_str", last_error);
  }
  if (version >= 1) {
    archive& make_nvp("cop_per_output_", cop_per_output_);
    archive& make_nvp("single_cops_per_output_", single_cops_per_output_);
    archive& make_nvp("model_per_output_", model_per_output_);
    archive& make_nvp("cv_indexes_per_output_", cv_indexes_per_output_);
    archive& make_nvp("surrogate_per_output_", surrogate_per_output_);
  }
  archive& make_nvp("zorsolver_", zorsolver_);
  if (version >= 1) archive& make_nvp("built_", built_);
  if constexpr (Archive::is_loading::value) FinishReading(version);
}

KESTREL_INSTANTIATE_SERIALIZE(ZOR)

namespace kestrel::api {

void StoreRecord(const ZOR& record, std::ostream& stream) {
  portable_binary_oarchive archive(stream, 0);
  const ZOR* const pointer = &record;
  archive << pointer;
  archive.Flush();
}

std::unique_ptr<ZOR> LoadRecord(std::istream& stream) {
  portable_binary_iarchive archive(stream, 0);
  ZOR* pointer = nullptr;
  archive >> pointer;
  std::unique_ptr<ZOR> record(pointer);
  if (!record) throw std::runtime_error("The file holds no model.");
  return record;
}

}  // namespace kestrel::api
