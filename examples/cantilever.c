/* Learns the deflection of a cantilever from 100 computed designs and predicts a design that is not among them.
 *
 *     cc cantilever.c $(pkg-config --cflags --libs zor_api) -lm -o cantilever
 */
#include <math.h>
#include <stdio.h>
#include <zor_api.h>

#define INPUTS 3
#define DESIGNS 100

static const char* const kInputs[INPUTS] = {"force", "length", "height"};
static const char* const kOutputs[1] = {"deflection"};
static const double kLower[INPUTS] = {100.0, 0.5, 0.02}; /* N, m, m */
static const double kUpper[INPUTS] = {500.0, 1.5, 0.05};

/* Deflection in mm of the free end: 4 F L^3 / (E b h^3), of steel, 30 mm wide. */
static double Deflection(const double* beam) {
  return 1000.0 * 4.0 * beam[0] * pow(beam[1], 3.0) / (210e9 * 0.03 * pow(beam[2], 3.0));
}

/* The digits of `index` in a base, mirrored at the point: points that fill 0 to 1 evenly (Halton 1960). */
static double RadicalInverse(int index, int base) {
  double value = 0.0;
  double digit = 1.0 / base;
  for (; index > 0; index /= base, digit /= base) value += digit * (index % base);
  return value;
}

/* One row per design: the inputs, then the output. */
static void ComputeDesigns(double* samples) {
  static const int kBases[INPUTS] = {2, 3, 5};
  int design;
  int i;
  for (design = 0; design < DESIGNS; ++design) {
    double* const row = samples + design * (INPUTS + 1);
    for (i = 0; i < INPUTS; ++i) {
      row[i] = kLower[i] + (kUpper[i] - kLower[i]) * RadicalInverse(design + 1, kBases[i]);
    }
    row[INPUTS] = Deflection(row);
  }
}

static uint32_t Build(zor_handle_t handle) {
  double samples[DESIGNS * (INPUTS + 1)];
  uint32_t code = zor_set_input_count(handle, INPUTS);
  ComputeDesigns(samples);
  if (code == zor_success) code = zor_set_output_count(handle, 1);
  if (code == zor_success) code = zor_set_input_names(handle, kInputs, INPUTS);
  if (code == zor_success) code = zor_set_output_names(handle, kOutputs, 1);
  if (code == zor_success) code = zor_build(handle, samples, DESIGNS);
  return code;
}

static uint32_t Describe(zor_handle_t handle) {
  char* text = NULL;
  size_t length = 0;
  double cop = 0.0;
  double single_cops[INPUTS];
  int i;
  uint32_t code = zor_get_model_str_per_output(handle, 0, &text, &length);
  if (code == zor_success) code = zor_get_cop_per_output(handle, 0, &cop);
  if (code == zor_success) code = zor_get_single_cop_per_output(handle, 0, single_cops);
  if (code == zor_success) {
    printf("%s: %.*s, CoP %.4f\n", kOutputs[0], (int)length, text, cop);
    for (i = 0; i < INPUTS; ++i) printf("  %-8s %.4f\n", kInputs[i], single_cops[i]);
  }
  zor_release_buf(text);
  return code;
}

int main(void) {
  const double beam[INPUTS] = {300.0, 1.2, 0.04};
  double prediction = 0.0;
  double gradient[INPUTS] = {0.0, 0.0, 0.0};
  zor_handle_t handle = NULL;
  uint32_t code = zor_create(&handle);
  if (code == zor_success) code = Build(handle);
  if (code == zor_success) code = Describe(handle);
  if (code == zor_success) code = zor_solve(handle, beam, &prediction, 1);
  if (code == zor_success) code = zor_calculate_gradients_per_output(handle, 0, beam, 1, gradient);
  if (code == zor_success) {
    printf("predicted %.3f mm, exact %.3f mm\n", prediction, Deflection(beam));
    printf("%.3f mm more for each N\n", gradient[0]);
  } else {
    fprintf(stderr, "%s %s\n", zor_get_error_description(code), zor_get_last_error(handle));
  }
  zor_release(handle);
  return code == zor_success && fabs(prediction / Deflection(beam) - 1.0) < 0.1 ? 0 : 1;
}
