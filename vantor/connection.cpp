#include <memory>

#include "vantor/guard.h"

using namespace vantor;

static constexpr char MODULE[] = "connection";

struct tcm_context {
  tav_dm_session* session;
};

static bool held(const tav_ebuf* ebuf) {
  return ebuf != nullptr && ebuf->err_code != TAV_ERR_NONE;
}

void tcm_connect(tcm_context_t** context, uint64_t* database, tav_ebuf* ebuf) {
  const request about{ebuf, 0, 0, TAV_ERRLOC_CM};
  if (context != nullptr) *context = nullptr;
  guarded<void>(about, [&] {
    if (context == nullptr || database == nullptr) {
      fail(about, TAV_ERR_BAD_ARG);
      return;
    }
    auto opened = std::make_unique<tcm_context>();
    tav_ebuf own{};
    tav_ebuf* error = ebuf != nullptr ? ebuf : &own;
    opened->session = tav_bound_data_manager()->connect(database, error);
    if (opened->session != nullptr) *context = opened.release();
  });
}

static void report_unconnected(tav_ebuf* ebuf) {
  tav_component_log(tav_component::CM, 1,
                    "An operation was asked for without a connection. Look above for why the "
                    "connection was not opened; where nothing stands there, tav.conf has no usable "
                    "userid: give it an entry such as \"userid = 0.0.0.1 /admin 1\".",
                    HERE);
  tav_set_error(ebuf, {TAV_ERRLOC_CONNECTION, TAV_ERRCLASS_REQUEST, TAV_ERR_NOT_CONNECTED});
}

void tcm_op(tcm_context_t* context, uint32_t opcode, uint32_t flags, tav_flist_t* input,
            tav_flist_t** output, tav_ebuf* ebuf) {
  if (output != nullptr) *output = nullptr;
  if (held(ebuf)) return;
  if (context == nullptr) return report_unconnected(ebuf);
  const request about{ebuf, 0, 0, TAV_ERRLOC_CONNECTION};
  guarded<void>(about, [&] {
    if (input == nullptr || output == nullptr) {
      fail(about, TAV_ERR_BAD_ARG);
      return;
    }
    tav_ebuf own{};
    tav_ebuf* error = ebuf != nullptr ? ebuf : &own;
    *output = tav_bound_data_manager()->op(context->session, opcode, flags, input, error);
  });
}

// The session ends even if the buffer holds an error, which stays in it.
void tcm_context_close(tcm_context_t* context, int32_t, tav_ebuf* ebuf) {
  if (context == nullptr) return;
  const std::unique_ptr<tcm_context> closed(context);
  tav_ebuf* error = held(ebuf) ? nullptr : ebuf;
  guarded<void>({error, 0, 0, TAV_ERRLOC_CONNECTION},
                [&] { tav_bound_data_manager()->close(closed->session, error); });
}
