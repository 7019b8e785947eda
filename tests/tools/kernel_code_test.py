"""What the check of generated code finds in PTX, and what it takes for a fault."""
import pathlib
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "tools"))
import kernel_code  # noqa: E402


def entry(name, *lines):
    body = "\n\t".join(lines)
    return f".visible .entry {name}(\n\t.param .u64 {name}_param_0\n)\n{{\n\t{body}\n\tret;\n\n}}\n"


class KernelCode(unittest.TestCase):
    def test_counts_what_a_kernel_has(self):
        ptx = entry("plain", "st.global.v4.f32 \t[%rd1], {%f1, %f2, %f3, %f4};", "st.global.u32 \t[%rd1], %r1;",
                    "sqrt.rn.f64 \t%fd1, %fd2;")
        ptx += entry("poor", ".local .align 16 .b8 \t__local_depot1[48];", ".local .align 4 .b8 \tmore[8];",
                     "sqrt.approx.f32 \t%f1, %f2;", "div.full.f32 \t%f1, %f2, %f3;", "st.global.f64 \t[%rd1], %fd1;")
        ptx += entry("basic_parallel_for_offset_twin", ".local .align 16 .b8 \t__local_depot2[48];")
        self.assertEqual(kernel_code.kernels_of(ptx), {
            "plain": {"local": 0, "vectors": 1, "singles": 1, "inexact": []},
            "poor": {"local": 56, "vectors": 0, "singles": 1, "inexact": ["div.full.f32", "sqrt.approx.f32"]}})

    def test_faults(self):
        def faults(name, **found):
            return list(kernel_code.faults_of(name, {"local": 0, "inexact": [], **found}))

        self.assertEqual(faults("engine_func<mcg59>"), [])
        self.assertEqual(faults("engine_func<mcg59>", local=8), ["engine_func<mcg59>: 8 bytes in local memory"])
        self.assertEqual(faults("multinomial_vector<int*>", local=8), ["multinomial_vector<int*>: 8 bytes in local memory"])
        self.assertEqual(faults("generate_in_turn<words_32>", local=8), [])
        self.assertEqual(faults("ring_jump<r250>", inexact=["rcp.approx.ftz.f32"]), ["ring_jump<r250>: rcp.approx.ftz.f32"])

    def test_registers_go_with_their_kernels(self):
        log = ("ptxas info    : Compiling entry function 'one' for 'sm_90'\nptxas info    : Used 18 registers, 64 bytes\n"
               "ptxas info    : Compiling entry function 'two' for 'sm_90'\nptxas info    : Used 32 registers\n")
        self.assertEqual(dict(kernel_code.REGISTERS.findall(log)), {"one": "18", "two": "32"})


if __name__ == "__main__":
    unittest.main()
