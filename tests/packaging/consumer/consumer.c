/* Builds a model of y = 1 + 2 x from 20 designs and evaluates it: 0 if the prediction is right. */
#include <math.h>
#include <stdio.h>
#include <zor_api.h>

#define DESIGNS 20

static uint32_t BuildAndSolve(zor_handle_t handle, const double* point, double* prediction) {
  double samples[DESIGNS * 2];
  uint32_t code = zor_set_input_count(handle, 1);
  int i;
  for (i = 0; i < DESIGNS; ++i) {
    samples[2 * i] = i;
    samples[2 * i + 1] = 1.0 + 2.0 * i;
  }
  if (code == zor_success) code = zor_set_output_count(handle, 1);
  if (code == zor_success) code = zor_build(handle, samples, DESIGNS);
  if (code == zor_success) code = zor_solve(handle, point, prediction, 1);
  return code;
}

int main(void) {
  const double point = 7.5;
  double prediction = 0.0;
  zor_handle_t handle = NULL;
  uint32_t code = zor_create(&handle);
  if (code == zor_success) code = BuildAndSolve(handle, &point, &prediction);
  if (code != zor_success) {
    printf("%s %s\n", zor_get_error_description(code), zor_get_last_error(handle));
  }
  zor_release(handle);
  printf("%s: %.17g\n", zor_get_version_str(), prediction);
  return code == zor_success && fabs(prediction - 16.0) < 1e-6 ? 0 : 1;
}
