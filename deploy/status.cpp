// The status flags of a run.
#include "deploy/modes.h"

int32_t tav_deploy_verify_status = 1;
int32_t tav_deploy_conflict_status = 1;
int32_t tav_deploy_fld_count = 0;
int32_t tav_deploy_class_count = 0;

int tav_deploy_get_error() {
  return tav_deploy_verify_status;
}
int tav_deploy_get_conflict() {
  return tav_deploy_conflict_status;
}
void tav_deploy_raise_error() {
  tav_deploy_verify_status = -1;
}
void tav_deploy_raise_conflict() {
  tav_deploy_conflict_status = -1;
}
