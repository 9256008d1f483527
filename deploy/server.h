// Login and retrieval of the server's dictionary.
#ifndef DEPLOY_SERVER_H
#define DEPLOY_SERVER_H

#include "dd/owners.h"
#include "deploy/modes.h"

namespace deploy {

// A login: the connection and the identity it was made with. Both may be missing: a login without
// an identity in tav.conf leaves no error in the buffer, and the first operation then reports it.
struct server_session {
  tcm_context_t* connection = nullptr;
  dd_poid identity;

  server_session() = default;
  server_session(const server_session&) = delete;
  server_session& operator=(const server_session&) = delete;
  ~server_session();  // closes the connection, giving up what is not durable yet
};

}  // namespace deploy

// Reads the identity from tav.conf and connects: 1, or -1. Whether the run may go on is for the
// error buffer to say.
int tav_deploy_login(deploy::server_session& session, tav_ebuf* ebuf);

namespace deploy {

// The orderly end of a run in which nothing failed: closes the connection with an error buffer.
void log_out(server_session& session);

}  // namespace deploy

// Fetches field definitions: those that the context names, or all without one. 1, or -1 after a
// full report. The list is the caller's.
int tav_deploy_get_dd_fields(const deploy::server_session& session, dd_flist& fields,
                             uint64_t database, const tav_deploy_ctx_t* ctx);

// Fetches storable classes: those that the context names (with their subclasses if it asks for
// them), or all without one. 1; 0 when a named class is missing (reported; the others are there);
// -1.
int tav_deploy_get_dd_classes(const deploy::server_session& session, dd_flist& classes,
                              uint64_t database, const tav_deploy_ctx_t* ctx);

#endif
