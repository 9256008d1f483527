// The scripts are one program: what one declares at its top the others use. So are browsers' names.
import { readdirSync, readFileSync } from "node:fs";

const scripts = readdirSync(".").filter(
  (name) => name.endsWith(".js") && !name.includes(".config"),
);
const declared = scripts.flatMap((name) =>
  [
    ...readFileSync(name, "utf8").matchAll(
      /^(?:async )?(?:function|const|let) \[?(\w+)(?:, (\w+)\])?/gm,
    ),
  ].flatMap((found) => found.slice(1).filter(Boolean)),
);
const browser = `Blob IntersectionObserver MutationObserver Node TextEncoder URL addEventListener
  document history localStorage location matchMedia navigator scrollTo setTimeout`.split(/\s+/);

export default [
  {
    files: ["*.js"],
    ignores: ["*.mjs"],
    languageOptions: {
      sourceType: "script",
      globals: Object.fromEntries([...declared, ...browser].map((name) => [name, "readonly"])),
    },
    rules: {
      "no-undef": "error",
      "no-unused-vars": ["error", { vars: "local" }],
      "no-eval": "error",
      "no-implied-eval": "error",
      "no-restricted-properties": [
        "error",
        ...["innerHTML", "outerHTML", "insertAdjacentHTML", "write"].map((property) => ({
          property,
          message: "Texts of the dictionary never become markup.",
        })),
      ],
      eqeqeq: "error",
    },
  },
];
